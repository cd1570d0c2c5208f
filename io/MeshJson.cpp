// Reading and writing the mesh keys of a .lbdoc art object.
//
// Reading validates everything and names the offending value by its JSON
// path. Writing lists every run and every flag, so a written mesh reads
// back equal (doubles are written with round-trip precision by the JSON
// library).
#include "io/MeshJson.h"

#include <array>
#include <cmath>
#include <optional>
#include <string_view>
#include <set>
#include <utility>

#include "io/JsonDom.h"
#include "io/JsonWriter.h"
#include "io/Limits.h"

namespace lb::io {

using json = JsonRef;
using lb::host::GradientMesh;
using lb::host::MeshNodeData;
using lb::host::MeshRunData;

namespace {

// The JSON path of a value, spelled out only when an error names it (a
// large mesh has millions of values and no errors). A Path refers to its
// parent: it lives no longer than the parent it was made from.
class Path {
 public:
  Path(const std::string& root) : root_(&root) {}
  Path(const Path& parent, std::string_view key) : parent_(&parent), key_(key) {}
  Path(const Path& parent, size_t index) : parent_(&parent), index_(index) {}
  operator std::string() const {
    if (root_) return *root_;
    std::string out = *parent_;
    if (key_.data()) {
      out += '.';
      out += key_;
    } else {
      out += '[' + std::to_string(index_) + ']';
    }
    return out;
  }

 private:
  const std::string* root_ = nullptr;
  const Path* parent_ = nullptr;
  std::string_view key_;
  size_t index_ = 0;
};

Path at(const Path& path, std::string_view key) { return {path, key}; }
Path at(const Path& path, size_t k) { return {path, k}; }

const char* typeName(const json& j) {
  switch (j.kind()) {
    case json::Kind::Null: return "null";
    case json::Kind::Boolean: return "a boolean";
    case json::Kind::String: return "a string";
    case json::Kind::Array: return "an array";
    case json::Kind::Object: return "an object";
    default: return "a number";
  }
}

[[noreturn]] void wrongType(const json& j, const Path& path, const char* want) {
  throw FormatError(path, std::string("expected ") + want + ", found " + typeName(j));
}

double number(const json& j, const Path& path) {
  if (!j.is_number()) wrongType(j, path, "a number");
  const double d = j.get<double>();
  if (!std::isfinite(d)) throw FormatError(path, "number is not finite");
  return d;
}

double unit(const json& j, const Path& path) {
  const double d = number(j, path);
  if (d < 0 || d > 1) throw FormatError(path, "value outside 0..1");
  return d;
}

int integer(const json& j, const Path& path) {
  if (!j.is_number_integer()) wrongType(j, path, "an integer");
  const auto v = j.get<long long>();
  if (v < -(1LL << 30) || v > (1LL << 30)) throw FormatError(path, "integer out of range");
  return static_cast<int>(v);
}

bool boolean(const json& j, const Path& path) {
  if (!j.is_boolean()) wrongType(j, path, "a boolean");
  return j.get<bool>();
}

json array(const json& j, const Path& path, size_t n = static_cast<size_t>(-1)) {
  if (!j.is_array()) wrongType(j, path, "an array");
  if (n != static_cast<size_t>(-1) && j.size() != n)
    throw FormatError(path, "expected " + std::to_string(n) + " entries, found " + std::to_string(j.size()));
  return j;
}

// The members of object j named in `keys`, found in one pass over it:
// entry k is the member named keys[k], when present; any other key is an
// error. Used where many objects of one shape are read (nodes, runs).
template <size_t N>
std::array<std::optional<json>, N> members(const json& j, const Path& path,
                                           const std::array<std::string_view, N>& keys) {
  if (!j.is_object()) wrongType(j, path, "an object");
  std::array<std::optional<json>, N> out;
  for (auto it = j.begin(); it != j.end(); ++it) {
    const std::string_view key = it.key();
    size_t k = 0;
    while (k < N && keys[k] != key) ++k;
    if (k == N) throw FormatError(at(path, key), "unknown key");
    out[k] = *it;
  }
  return out;
}

json need(const std::optional<json>& member, std::string_view key, const Path& path) {
  if (!member) throw FormatError(at(path, key), "missing required key");
  return *member;
}

json required(const json& obj, const char* key, const Path& path) { return need(obj.find(key), key, path); }

double coordinate(const json& j, const Path& path) {
  const double d = number(j, path);
  if (std::fabs(d) > kMaxCoordinate) throw FormatError(path, "coordinate outside +-1e7");
  return d;
}

AIRealPoint point(const json& j, const Path& path) {
  array(j, path, 2);
  return {coordinate(j[0], at(path, 0)), coordinate(j[1], at(path, 1))};
}

AIColor color(const json& j, const Path& path) {
  AIColor c{};
  if (j.is_string()) {
    if (j.get<std::string>() != "none") throw FormatError(path, "unknown colour \"" + j.get<std::string>() + "\"");
    c.kind = kNoneColor;
    return c;
  }
  if (!j.is_object()) wrongType(j, path, "a colour");
  if (j.size() != 1) throw FormatError(path, "a colour has exactly one of \"gray\", \"rgb\", \"cmyk\"");
  const auto it = j.begin();
  const Path p = at(path, it.key());
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

void writeColor(JsonWriter& w, const AIColor& c) {
  auto numbers = [&w](std::initializer_list<double> xs) {
    w.array([&] {
      for (double x : xs) w.number(x);
    });
  };
  switch (c.kind) {
    case kGrayColor: w.object([&] { w.member("gray", c.c.g.gray); }); break;
    case kThreeColor:
      w.object([&] {
        w.key("rgb");
        numbers({c.c.rgb.red, c.c.rgb.green, c.c.rgb.blue});
      });
      break;
    case kFourColor:
      w.object([&] {
        w.key("cmyk");
        numbers({c.c.f.cyan, c.c.f.magenta, c.c.f.yellow, c.c.f.black});
      });
      break;
    default: w.string("none");
  }
}

void writePoint(JsonWriter& w, AIRealPoint p) {
  w.array([&] {
    w.number(p.h);
    w.number(p.v);
  });
}

std::vector<double> positions(const json& j, const Path& path, int n) {
  array(j, path, static_cast<size_t>(n) + 1);
  std::vector<double> out;
  size_t k = 0;
  for (const json element : j) {
    const double d = number(element, at(path, k));
    if (k == 0 && d != 0) throw FormatError(at(path, k), "the first relative position must be 0");
    if (k == j.size() - 1 && d != 1) throw FormatError(at(path, k), "the last relative position must be 1");
    if (k > 0 && !(d > out.back())) throw FormatError(at(path, k), "relative positions must increase strictly");
    out.push_back(d);
    ++k;
  }
  return out;
}

constexpr std::array<std::string_view, 4> kDirKeys{"I-", "J-", "I+", "J+"};

}  // namespace

std::unique_ptr<GradientMesh> meshFromTree(const JsonRef& art, const std::string& root) {
  const Path path(root);
  const json size = array(required(art, "size", path), at(path, "size"), 2);
  const int I = integer(size[0], at(path, "size[0]"));
  const int J = integer(size[1], at(path, "size[1]"));
  if (I < 1) throw FormatError(at(path, "size[0]"), "a mesh needs at least one cell along I");
  if (J < 1) throw FormatError(at(path, "size[1]"), "a mesh needs at least one cell along J");
  if (static_cast<long long>(I + 1) * (J + 1) > 50'000'000LL) throw FormatError(at(path, "size"), "mesh too large");

  // The declared size must match the data present before anything is
  // allocated for it: a short file cannot make the reader build a huge mesh.
  const Path np = at(path, "nodes");
  const json nodes = array(required(art, "nodes", path), np);
  const size_t want = static_cast<size_t>(I + 1) * static_cast<size_t>(J + 1);
  if (nodes.size() != want)
    throw FormatError(np, "expected (I+1)(J+1) = " + std::to_string(want) + " nodes, found " +
                              std::to_string(nodes.size()));
  std::vector<double> us, vs;
  if (auto u = art.find("u")) us = positions(*u, at(path, "u"), I);
  if (auto v = art.find("v")) vs = positions(*v, at(path, "v"), J);

  auto mesh = std::make_unique<GradientMesh>();
  mesh->initCartesian(I, J);
  if (us.empty()) us = mesh->relativeUs();
  if (vs.empty()) vs = mesh->relativeVs();
  mesh->setRelative(us, vs);

  bool anySelectedKey = false;
  size_t k = 0;
  for (const json node : nodes) {
    const Path p = at(np, k);
    static constexpr std::array<std::string_view, 5> kNodeKeys{"p", "color", "opacity", "selected", "smooth"};
    const auto [pv, c, o, s, smooth] = members(node, p, kNodeKeys);
    MeshNodeData d;
    d.p = point(need(pv, "p", p), at(p, "p"));
    d.color.kind = kThreeColor;
    d.color.c.rgb = {1, 1, 1};
    if (c) d.color = color(*c, at(p, "color"));
    if (o) d.opacity = unit(*o, at(p, "opacity"));
    if (s) {
      anySelectedKey = true;
      d.selected = boolean(*s, at(p, "selected"));
    }
    if (smooth) {
      const Path sp = at(p, "smooth");
      const auto flags = members(*smooth, sp, kDirKeys);
      for (int dir = 0; dir < 4; ++dir)
        if (flags[dir]) d.smooth[dir] = boolean(*flags[dir], at(sp, kDirKeys[dir]));
    }
    mesh->setNodeData(static_cast<int>(k % (I + 1)), static_cast<int>(k / (I + 1)), d);
    ++k;
  }

  std::vector<bool> seen(static_cast<size_t>(2) * want);  // runs listed, by axis, j, i
  if (auto runsValue = art.find("runs")) {
    const Path rp = at(path, "runs");
    const json runs = array(*runsValue, rp);
    size_t k = 0;
    for (const json run : runs) {
      const Path p = at(rp, k++);
      static constexpr std::array<std::string_view, 4> kRunKeys{"node", "axis", "points", "inner"};
      const auto [nodeValue, axisValue, pointsValue, innerValue] = members(run, p, kRunKeys);
      const json nodeIdx = array(need(nodeValue, "node", p), at(p, "node"), 2);
      const int i = integer(nodeIdx[0], at(p, "node[0]")), j = integer(nodeIdx[1], at(p, "node[1]"));
      const json ax = need(axisValue, "axis", p);
      if (!ax.is_string()) wrongType(ax, at(p, "axis"), "\"I\" or \"J\"");
      const std::string axs = ax.get<std::string>();
      if (axs != "I" && axs != "J") throw FormatError(at(p, "axis"), "expected \"I\" or \"J\"");
      const int axis = axs == "J";
      const int ei = axis == 0 ? i + 1 : i, ej = axis == 0 ? j : j + 1;
      if (i < 0 || j < 0 || ei > I || ej > J) throw FormatError(at(p, "node"), "no run leaves this node along " + axs);
      const size_t slot = static_cast<size_t>(axis) * want + static_cast<size_t>(j) * (I + 1) + static_cast<size_t>(i);
      if (seen[slot]) throw FormatError(p, "run listed twice");
      seen[slot] = true;
      const Path pp = at(p, "points");
      const json pts = array(need(pointsValue, "points", p), pp);
      if (pts.size() < 4 || (pts.size() - 1) % 3 != 0)
        throw FormatError(pp, "a run of m pieces has 3m + 1 points, found " + std::to_string(pts.size()));
      MeshRunData d;
      d.points.reserve(pts.size());
      size_t q = 0;
      for (const json pt : pts) d.points.push_back(point(pt, at(pp, q++)));
      const AIRealPoint a = mesh->nodeData(i, j).p, b = mesh->nodeData(ei, ej).p;
      if (d.points.front().h != a.h || d.points.front().v != a.v)
        throw FormatError(at(pp, 0), "does not match the start node's \"p\"");
      if (d.points.back().h != b.h || d.points.back().v != b.v)
        throw FormatError(at(pp, pts.size() - 1), "does not match the end node's \"p\"");
      const size_t m = (pts.size() - 1) / 3;
      const Path ip = at(p, "inner");
      if (m > 1 && !innerValue) throw FormatError(ip, "missing required key");
      if (innerValue) {
        const json inner = array(*innerValue, ip);
        if (inner.size() != m - 1)
          throw FormatError(ip, "a run of " + std::to_string(m) + " pieces has " + std::to_string(m - 1) +
                                    " inner entries, found " + std::to_string(inner.size()));
        size_t q = 0;
        for (const json element : inner) {
          const Path ep = at(ip, q++);
          static constexpr std::array<std::string_view, 3> kInnerKeys{"kind", "selected", "smooth"};
          const auto [kindValue, selectedValue, smoothValue] = members(element, ep, kInnerKeys);
          const json kind = need(kindValue, "kind", ep);
          if (!kind.is_string()) wrongType(kind, at(ep, "kind"), "\"knot\" or \"vertex\"");
          MeshRunData::Inner in;
          if (kind.get<std::string>() == "vertex") {
            in.vertex = true;
            if (selectedValue) {
              anySelectedKey = true;
              in.selected = boolean(*selectedValue, at(ep, "selected"));
            }
            if (smoothValue) {
              const json sm = array(*smoothValue, at(ep, "smooth"), 2);
              in.smooth[0] = boolean(sm[0], at(ep, "smooth[0]"));
              in.smooth[1] = boolean(sm[1], at(ep, "smooth[1]"));
            }
          } else if (kind.get<std::string>() == "knot") {
            if (selectedValue) throw FormatError(at(ep, "selected"), "a knot cannot be selected");
            if (smoothValue) throw FormatError(at(ep, "smooth"), "a knot has no smooth flags");
          } else {
            throw FormatError(at(ep, "kind"), "expected \"knot\" or \"vertex\"");
          }
          d.inner.push_back(in);
        }
      }
      mesh->setRunData(axis, i, j, d);
    }
  }

  // Runs not listed are straight lines with handles at one and two thirds.
  for (int axis = 0; axis < 2; ++axis)
    for (int j = 0; j <= J - axis; ++j)
      for (int i = 0; i <= I - (1 - axis); ++i) {
        if (seen[static_cast<size_t>(axis) * want + static_cast<size_t>(j) * (I + 1) + static_cast<size_t>(i)])
          continue;
        const AIRealPoint a = mesh->nodeData(i, j).p;
        const AIRealPoint b = mesh->nodeData(axis == 0 ? i + 1 : i, axis == 0 ? j : j + 1).p;
        MeshRunData d;
        d.points = {a,
                    {a.h + (b.h - a.h) / 3, a.v + (b.v - a.v) / 3},
                    {a.h + 2 * (b.h - a.h) / 3, a.v + 2 * (b.v - a.v) / 3},
                    b};
        mesh->setRunData(axis, i, j, d);
      }

  // A selected mesh whose file records no vertex selection is selected as
  // a whole. The caller sets the art's own selected attribute without
  // touching the vertex selection again.
  const auto sel = art.find("selected");
  if (!anySelectedKey && sel && sel->is_boolean() && sel->get<bool>()) mesh->selectAll();
  return mesh;
}

std::unique_ptr<GradientMesh> meshFromJson(const nlohmann::json& art, const std::string& path) {
  const JsonTree tree = JsonTree::parse(art.dump());
  return meshFromTree(tree.root(), path);
}

void writeMeshKeys(JsonWriter& w, const GradientMesh& mesh) {
  // Keys in the order the format has always been written: alphabetical.
  const int I = mesh.sizeI(), J = mesh.sizeJ();
  w.key("nodes");
  w.array([&] {
    for (int j = 0; j <= J && !w.aborted(); ++j)
      for (int i = 0; i <= I && !w.aborted(); ++i) {
        const MeshNodeData d = mesh.nodeData(i, j);
        w.object([&] {
          w.key("color");
          writeColor(w, d.color);
          w.member("opacity", d.opacity);
          w.key("p");
          writePoint(w, d.p);
          w.member("selected", d.selected);
          w.key("smooth");
          w.object([&] {
            for (int dir : {2, 0, 3, 1}) w.member(kDirKeys[dir], d.smooth[dir]);
          });
        });
      }
  });
  w.key("runs");
  w.array([&] {
    auto run = [&](int axis, int i, int j) {
      const MeshRunData d = mesh.runData(axis, i, j);
      w.object([&] {
        w.member("axis", axis ? "J" : "I");
        w.key("inner");
        w.array([&] {
          for (const auto& in : d.inner)
            w.object([&] {
              w.member("kind", in.vertex ? "vertex" : "knot");
              if (!in.vertex) return;
              w.member("selected", in.selected);
              w.key("smooth");
              w.array([&] {
                w.boolean(in.smooth[0]);
                w.boolean(in.smooth[1]);
              });
            });
        });
        w.key("node");
        w.array([&] {
          w.integer(i);
          w.integer(j);
        });
        w.key("points");
        w.array([&] {
          for (const AIRealPoint& p : d.points) writePoint(w, p);
        });
      });
    };
    for (int j = 0; j <= J && !w.aborted(); ++j)
      for (int i = 0; i < I; ++i) run(0, i, j);
    for (int i = 0; i <= I && !w.aborted(); ++i)
      for (int j = 0; j < J; ++j) run(1, i, j);
  });
  w.key("size");
  w.array([&] {
    w.integer(I);
    w.integer(J);
  });
  for (const char* axis : {"u", "v"}) {
    w.key(axis);
    const std::vector<double> rel = axis[0] == 'u' ? mesh.relativeUs() : mesh.relativeVs();
    w.array([&] {
      for (double x : rel) w.number(x);
    });
  }
}

void meshToJson(const GradientMesh& mesh, nlohmann::json& art) {
  std::string text;
  JsonWriter w(text);
  w.object([&] { writeMeshKeys(w, mesh); });
  const nlohmann::json parsed = nlohmann::json::parse(text);
  for (auto it = parsed.begin(); it != parsed.end(); ++it) art[it.key()] = it.value();
}

bool isMeshKey(std::string_view key) {
  return key == "size" || key == "u" || key == "v" || key == "nodes" || key == "runs";
}

}  // namespace lb::io
