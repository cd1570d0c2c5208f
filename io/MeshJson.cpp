// Reading and writing the mesh keys of a .lbdoc art object.
//
// Reading validates everything and names the offending value by its JSON
// path. Writing lists every run and every flag, so a written mesh reads
// back equal (doubles are written with round-trip precision by the JSON
// library).
#include "io/MeshJson.h"

#include <cmath>
#include <set>
#include <utility>

namespace lb::io {

using nlohmann::json;
using lb::host::GradientMesh;
using lb::host::MeshNodeData;
using lb::host::MeshRunData;

namespace {

std::string at(const std::string& path, const std::string& key) { return path + "." + key; }
std::string at(const std::string& path, size_t k) { return path + "[" + std::to_string(k) + "]"; }

const char* typeName(const json& j) {
  switch (j.type()) {
    case json::value_t::null: return "null";
    case json::value_t::boolean: return "a boolean";
    case json::value_t::string: return "a string";
    case json::value_t::array: return "an array";
    case json::value_t::object: return "an object";
    case json::value_t::discarded: return "nothing";
    default: return "a number";
  }
}

[[noreturn]] void wrongType(const json& j, const std::string& path, const char* want) {
  throw FormatError(path, std::string("expected ") + want + ", found " + typeName(j));
}

double number(const json& j, const std::string& path) {
  if (!j.is_number()) wrongType(j, path, "a number");
  const double d = j.get<double>();
  if (!std::isfinite(d)) throw FormatError(path, "number is not finite");
  return d;
}

double unit(const json& j, const std::string& path) {
  const double d = number(j, path);
  if (d < 0 || d > 1) throw FormatError(path, "value outside 0..1");
  return d;
}

int integer(const json& j, const std::string& path) {
  if (!j.is_number_integer()) wrongType(j, path, "an integer");
  const auto v = j.get<long long>();
  if (v < -(1LL << 30) || v > (1LL << 30)) throw FormatError(path, "integer out of range");
  return static_cast<int>(v);
}

bool boolean(const json& j, const std::string& path) {
  if (!j.is_boolean()) wrongType(j, path, "a boolean");
  return j.get<bool>();
}

const json& array(const json& j, const std::string& path, size_t n = static_cast<size_t>(-1)) {
  if (!j.is_array()) wrongType(j, path, "an array");
  if (n != static_cast<size_t>(-1) && j.size() != n)
    throw FormatError(path, "expected " + std::to_string(n) + " entries, found " + std::to_string(j.size()));
  return j;
}

const json& object(const json& j, const std::string& path, std::initializer_list<const char*> keys) {
  if (!j.is_object()) wrongType(j, path, "an object");
  for (auto it = j.begin(); it != j.end(); ++it) {
    bool known = false;
    for (const char* k : keys) known = known || it.key() == k;
    if (!known) throw FormatError(at(path, it.key()), "unknown key");
  }
  return j;
}

const json& required(const json& obj, const char* key, const std::string& path) {
  auto it = obj.find(key);
  if (it == obj.end()) throw FormatError(at(path, key), "missing required key");
  return *it;
}

AIRealPoint point(const json& j, const std::string& path) {
  array(j, path, 2);
  return {number(j[0], at(path, 0)), number(j[1], at(path, 1))};
}

AIColor color(const json& j, const std::string& path) {
  AIColor c{};
  if (j.is_string()) {
    if (j.get<std::string>() != "none") throw FormatError(path, "unknown colour \"" + j.get<std::string>() + "\"");
    c.kind = kNoneColor;
    return c;
  }
  if (!j.is_object()) wrongType(j, path, "a colour");
  if (j.size() != 1) throw FormatError(path, "a colour has exactly one of \"gray\", \"rgb\", \"cmyk\"");
  const auto it = j.begin();
  const std::string p = at(path, it.key());
  if (it.key() == "gray") {
    c.kind = kGrayColor;
    c.c.g.gray = unit(*it, p);
  } else if (it.key() == "rgb") {
    array(*it, p, 3);
    c.kind = kThreeColor;
    c.c.rgb = {unit((*it)[0], at(p, 0)), unit((*it)[1], at(p, 1)), unit((*it)[2], at(p, 2))};
  } else if (it.key() == "cmyk") {
    array(*it, p, 4);
    c.kind = kFourColor;
    c.c.f = {unit((*it)[0], at(p, 0)), unit((*it)[1], at(p, 1)), unit((*it)[2], at(p, 2)), unit((*it)[3], at(p, 3))};
  } else {
    throw FormatError(p, "unknown key");
  }
  return c;
}

json colorJson(const AIColor& c) {
  switch (c.kind) {
    case kGrayColor: return json{{"gray", c.c.g.gray}};
    case kThreeColor: return json{{"rgb", {c.c.rgb.red, c.c.rgb.green, c.c.rgb.blue}}};
    case kFourColor: return json{{"cmyk", {c.c.f.cyan, c.c.f.magenta, c.c.f.yellow, c.c.f.black}}};
    default: return "none";
  }
}

json pointJson(AIRealPoint p) { return json::array({p.h, p.v}); }

std::vector<double> positions(const json& j, const std::string& path, int n) {
  array(j, path, static_cast<size_t>(n) + 1);
  std::vector<double> out;
  for (size_t k = 0; k < j.size(); ++k) {
    const double d = number(j[k], at(path, k));
    if (k == 0 && d != 0) throw FormatError(at(path, k), "the first relative position must be 0");
    if (k == j.size() - 1 && d != 1) throw FormatError(at(path, k), "the last relative position must be 1");
    if (k > 0 && !(d > out.back())) throw FormatError(at(path, k), "relative positions must increase strictly");
    out.push_back(d);
  }
  return out;
}

const char* const kDirKeys[4] = {"I-", "J-", "I+", "J+"};

}  // namespace

std::unique_ptr<GradientMesh> meshFromJson(const json& art, const std::string& path) {
  const json& size = array(required(art, "size", path), at(path, "size"), 2);
  const int I = integer(size[0], at(path, "size[0]"));
  const int J = integer(size[1], at(path, "size[1]"));
  if (I < 1) throw FormatError(at(path, "size[0]"), "a mesh needs at least one cell along I");
  if (J < 1) throw FormatError(at(path, "size[1]"), "a mesh needs at least one cell along J");
  if (static_cast<long long>(I + 1) * (J + 1) > 50'000'000LL) throw FormatError(at(path, "size"), "mesh too large");

  auto mesh = std::make_unique<GradientMesh>();
  mesh->initCartesian(I, J);
  std::vector<double> us = mesh->relativeUs(), vs = mesh->relativeVs();
  if (art.contains("u")) us = positions(art["u"], at(path, "u"), I);
  if (art.contains("v")) vs = positions(art["v"], at(path, "v"), J);
  mesh->setRelative(us, vs);

  bool anySelectedKey = false;
  const std::string np = at(path, "nodes");
  const json& nodes = array(required(art, "nodes", path), np);
  const size_t want = static_cast<size_t>(I + 1) * static_cast<size_t>(J + 1);
  if (nodes.size() != want)
    throw FormatError(np, "expected (I+1)(J+1) = " + std::to_string(want) + " nodes, found " +
                              std::to_string(nodes.size()));
  for (size_t k = 0; k < nodes.size(); ++k) {
    const std::string p = at(np, k);
    const json& n = object(nodes[k], p, {"p", "color", "opacity", "selected", "smooth"});
    MeshNodeData d;
    d.p = point(required(n, "p", p), at(p, "p"));
    d.color.kind = kThreeColor;
    d.color.c.rgb = {1, 1, 1};
    if (n.contains("color")) d.color = color(n["color"], at(p, "color"));
    if (n.contains("opacity")) d.opacity = unit(n["opacity"], at(p, "opacity"));
    if (n.contains("selected")) {
      anySelectedKey = true;
      d.selected = boolean(n["selected"], at(p, "selected"));
    }
    if (n.contains("smooth")) {
      const std::string sp = at(p, "smooth");
      const json& sm = object(n["smooth"], sp, {"I-", "J-", "I+", "J+"});
      for (int dir = 0; dir < 4; ++dir)
        if (sm.contains(kDirKeys[dir])) d.smooth[dir] = boolean(sm[kDirKeys[dir]], at(sp, kDirKeys[dir]));
    }
    mesh->setNodeData(static_cast<int>(k % (I + 1)), static_cast<int>(k / (I + 1)), d);
  }

  // Runs not listed are straight lines with handles at one and two thirds.
  for (int axis = 0; axis < 2; ++axis)
    for (int j = 0; j <= J - axis; ++j)
      for (int i = 0; i <= I - (1 - axis); ++i) {
        const AIRealPoint a = mesh->nodeData(i, j).p;
        const AIRealPoint b = mesh->nodeData(axis == 0 ? i + 1 : i, axis == 0 ? j : j + 1).p;
        MeshRunData d;
        d.points = {a,
                    {a.h + (b.h - a.h) / 3, a.v + (b.v - a.v) / 3},
                    {a.h + 2 * (b.h - a.h) / 3, a.v + 2 * (b.v - a.v) / 3},
                    b};
        mesh->setRunData(axis, i, j, d);
      }

  if (art.contains("runs")) {
    const std::string rp = at(path, "runs");
    const json& runs = array(art["runs"], rp);
    std::set<std::tuple<int, int, int>> seen;
    for (size_t k = 0; k < runs.size(); ++k) {
      const std::string p = at(rp, k);
      const json& r = object(runs[k], p, {"node", "axis", "points", "inner"});
      const json& nodeIdx = array(required(r, "node", p), at(p, "node"), 2);
      const int i = integer(nodeIdx[0], at(p, "node[0]")), j = integer(nodeIdx[1], at(p, "node[1]"));
      const json& ax = required(r, "axis", p);
      if (!ax.is_string()) wrongType(ax, at(p, "axis"), "\"I\" or \"J\"");
      const std::string axs = ax.get<std::string>();
      if (axs != "I" && axs != "J") throw FormatError(at(p, "axis"), "expected \"I\" or \"J\"");
      const int axis = axs == "J";
      const int ei = axis == 0 ? i + 1 : i, ej = axis == 0 ? j : j + 1;
      if (i < 0 || j < 0 || ei > I || ej > J) throw FormatError(at(p, "node"), "no run leaves this node along " + axs);
      if (!seen.insert({axis, i, j}).second) throw FormatError(p, "run listed twice");
      const std::string pp = at(p, "points");
      const json& pts = array(required(r, "points", p), pp);
      if (pts.size() < 4 || (pts.size() - 1) % 3 != 0)
        throw FormatError(pp, "a run of m pieces has 3m + 1 points, found " + std::to_string(pts.size()));
      MeshRunData d;
      for (size_t q = 0; q < pts.size(); ++q) d.points.push_back(point(pts[q], at(pp, q)));
      const AIRealPoint a = mesh->nodeData(i, j).p, b = mesh->nodeData(ei, ej).p;
      if (d.points.front().h != a.h || d.points.front().v != a.v)
        throw FormatError(at(pp, 0), "does not match the start node's \"p\"");
      if (d.points.back().h != b.h || d.points.back().v != b.v)
        throw FormatError(at(pp, pts.size() - 1), "does not match the end node's \"p\"");
      const size_t m = (pts.size() - 1) / 3;
      const std::string ip = at(p, "inner");
      if (m > 1 && !r.contains("inner")) throw FormatError(ip, "missing required key");
      if (r.contains("inner")) {
        const json& inner = array(r["inner"], ip);
        if (inner.size() != m - 1)
          throw FormatError(ip, "a run of " + std::to_string(m) + " pieces has " + std::to_string(m - 1) +
                                    " inner entries, found " + std::to_string(inner.size()));
        for (size_t q = 0; q < inner.size(); ++q) {
          const std::string ep = at(ip, q);
          const json& e = object(inner[q], ep, {"kind", "selected", "smooth"});
          const json& kind = required(e, "kind", ep);
          if (!kind.is_string()) wrongType(kind, at(ep, "kind"), "\"knot\" or \"vertex\"");
          MeshRunData::Inner in;
          if (kind.get<std::string>() == "vertex") {
            in.vertex = true;
            if (e.contains("selected")) {
              anySelectedKey = true;
              in.selected = boolean(e["selected"], at(ep, "selected"));
            }
            if (e.contains("smooth")) {
              const json& sm = array(e["smooth"], at(ep, "smooth"), 2);
              in.smooth[0] = boolean(sm[0], at(ep, "smooth[0]"));
              in.smooth[1] = boolean(sm[1], at(ep, "smooth[1]"));
            }
          } else if (kind.get<std::string>() == "knot") {
            if (e.contains("selected")) throw FormatError(at(ep, "selected"), "a knot cannot be selected");
            if (e.contains("smooth")) throw FormatError(at(ep, "smooth"), "a knot has no smooth flags");
          } else {
            throw FormatError(at(ep, "kind"), "expected \"knot\" or \"vertex\"");
          }
          d.inner.push_back(in);
        }
      }
      mesh->setRunData(axis, i, j, d);
    }
  }

  // A selected mesh whose file records no vertex selection is selected as
  // a whole. The caller sets the art's own selected attribute without
  // touching the vertex selection again.
  const auto sel = art.find("selected");
  if (!anySelectedKey && sel != art.end() && sel->is_boolean() && sel->get<bool>()) mesh->selectAll();
  return mesh;
}

void meshToJson(const GradientMesh& mesh, json& art) {
  const int I = mesh.sizeI(), J = mesh.sizeJ();
  art["size"] = {I, J};
  art["u"] = mesh.relativeUs();
  art["v"] = mesh.relativeVs();
  json nodes = json::array();
  for (int j = 0; j <= J; ++j)
    for (int i = 0; i <= I; ++i) {
      const MeshNodeData d = mesh.nodeData(i, j);
      json smooth = json::object();
      for (int dir = 0; dir < 4; ++dir) smooth[kDirKeys[dir]] = d.smooth[dir];
      nodes.push_back(json{{"p", pointJson(d.p)},
                           {"color", colorJson(d.color)},
                           {"opacity", d.opacity},
                           {"selected", d.selected},
                           {"smooth", smooth}});
    }
  art["nodes"] = std::move(nodes);
  json runs = json::array();
  auto addRun = [&](int axis, int i, int j) {
    const MeshRunData d = mesh.runData(axis, i, j);
    json pts = json::array(), inner = json::array();
    for (const AIRealPoint& p : d.points) pts.push_back(pointJson(p));
    for (const auto& in : d.inner) {
      if (in.vertex)
        inner.push_back(json{{"kind", "vertex"}, {"selected", in.selected}, {"smooth", {in.smooth[0], in.smooth[1]}}});
      else
        inner.push_back(json{{"kind", "knot"}});
    }
    runs.push_back(json{{"node", {i, j}}, {"axis", axis ? "J" : "I"}, {"points", std::move(pts)}, {"inner", std::move(inner)}});
  };
  for (int j = 0; j <= J; ++j)
    for (int i = 0; i < I; ++i) addRun(0, i, j);
  for (int i = 0; i <= I; ++i)
    for (int j = 0; j < J; ++j) addRun(1, i, j);
  art["runs"] = std::move(runs);
}

bool isMeshKey(const std::string& key) {
  return key == "size" || key == "u" || key == "v" || key == "nodes" || key == "runs";
}

}  // namespace lb::io
