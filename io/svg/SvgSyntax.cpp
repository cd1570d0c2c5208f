// SVG attribute syntax: numbers, lengths, transforms, path data, colours.
#include "io/svg/SvgSyntax.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace lb::io::svg {

namespace {

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }

// A cursor over attribute text.
struct Scanner {
  const char* p;
  const char* end;
  void skip() {
    while (p < end && isSpace(*p)) ++p;
  }
  void skipSep() {
    skip();
    if (p < end && *p == ',') ++p;
    skip();
  }
  bool done() {
    skip();
    return p >= end;
  }
  bool number(double* out) {
    skip();
    const char* s = p;
    if (s < end && (*s == '+')) ++s;
    auto r = std::from_chars(s, end, *out);
    if (r.ec != std::errc() || !std::isfinite(*out)) return false;
    p = r.ptr;
    return true;
  }
  // A flag of an arc: a single 0 or 1, possibly not followed by a separator.
  bool flag(bool* out) {
    skip();
    if (p < end && (*p == '0' || *p == '1')) {
      *out = *p == '1';
      ++p;
      return true;
    }
    return false;
  }
  bool startsNumber() {
    skip();
    return p < end && (std::isdigit(static_cast<unsigned char>(*p)) || *p == '-' || *p == '+' || *p == '.');
  }
};

}  // namespace

std::string trim(const std::string& s) {
  size_t a = 0, b = s.size();
  while (a < b && isSpace(s[a])) ++a;
  while (b > a && isSpace(s[b - 1])) --b;
  return s.substr(a, b - a);
}

std::string fmt(double x) {
  if (x == 0) return "0";
  char buf[32];
  auto r = std::to_chars(buf, buf + sizeof buf, x);
  return std::string(buf, r.ptr);
}

std::optional<double> parseLength(const std::string& text) {
  const std::string s = trim(text);
  Scanner sc{s.data(), s.data() + s.size()};
  double v;
  if (!sc.number(&v)) return std::nullopt;
  const std::string unit(sc.p, sc.end);
  static const std::pair<const char*, double> kUnits[] = {{"", 1},         {"px", 1},          {"pt", 96.0 / 72},
                                                         {"pc", 16},       {"mm", 96 / 25.4},  {"cm", 96 / 2.54},
                                                         {"in", 96}};
  for (const auto& [u, f] : kUnits)
    if (unit == u) return v * f;
  return std::nullopt;
}

bool parseNumbers(const std::string& s, std::vector<double>* out) {
  out->clear();
  Scanner sc{s.data(), s.data() + s.size()};
  while (!sc.done()) {
    double v;
    if (!sc.number(&v)) return false;
    out->push_back(v);
    sc.skipSep();
  }
  return true;
}

std::optional<Affine> parseTransform(const std::string& s) {
  Affine m;
  Scanner sc{s.data(), s.data() + s.size()};
  while (!sc.done()) {
    const char* nameStart = sc.p;
    while (sc.p < sc.end && std::isalpha(static_cast<unsigned char>(*sc.p))) ++sc.p;
    const std::string name(nameStart, sc.p);
    sc.skip();
    if (sc.p >= sc.end || *sc.p != '(') return std::nullopt;
    ++sc.p;
    std::vector<double> a;
    while (true) {
      sc.skip();
      if (sc.p < sc.end && *sc.p == ')') break;
      double v;
      if (!sc.number(&v)) return std::nullopt;
      a.push_back(v);
      sc.skipSep();
    }
    ++sc.p;
    Affine t;
    const double deg = M_PI / 180;
    if (name == "matrix" && a.size() == 6) {
      t = {a[0], a[1], a[2], a[3], a[4], a[5]};
    } else if (name == "translate" && (a.size() == 1 || a.size() == 2)) {
      t.e = a[0];
      t.f = a.size() == 2 ? a[1] : 0;
    } else if (name == "scale" && (a.size() == 1 || a.size() == 2)) {
      t.a = a[0];
      t.d = a.size() == 2 ? a[1] : a[0];
    } else if (name == "rotate" && (a.size() == 1 || a.size() == 3)) {
      const double c = std::cos(a[0] * deg), sn = std::sin(a[0] * deg);
      t = {c, sn, -sn, c, 0, 0};
      if (a.size() == 3) t = Affine{1, 0, 0, 1, a[1], a[2]} * t * Affine{1, 0, 0, 1, -a[1], -a[2]};
    } else if (name == "skewX" && a.size() == 1) {
      t.c = std::tan(a[0] * deg);
    } else if (name == "skewY" && a.size() == 1) {
      t.b = std::tan(a[0] * deg);
    } else {
      return std::nullopt;
    }
    m = m * t;
    sc.skipSep();
  }
  return m;
}

namespace {

// Appends cubics approximating the elliptical arc (SVG endpoint form).
void arcTo(std::vector<Point>& pts, Point p0, double rx, double ry, double phiDeg, bool large, bool sweep, Point p1) {
  if (p0.x == p1.x && p0.y == p1.y) return;
  rx = std::fabs(rx), ry = std::fabs(ry);
  if (rx == 0 || ry == 0) {
    pts.insert(pts.end(), {lerp(p0, p1, 1.0 / 3), lerp(p0, p1, 2.0 / 3), p1});
    return;
  }
  const double phi = phiDeg * M_PI / 180, cp = std::cos(phi), sp = std::sin(phi);
  const double dx = (p0.x - p1.x) / 2, dy = (p0.y - p1.y) / 2;
  const double x1 = cp * dx + sp * dy, y1 = -sp * dx + cp * dy;
  const double lambda = x1 * x1 / (rx * rx) + y1 * y1 / (ry * ry);
  if (lambda > 1) rx *= std::sqrt(lambda), ry *= std::sqrt(lambda);
  const double num = rx * rx * ry * ry - rx * rx * y1 * y1 - ry * ry * x1 * x1;
  const double den = rx * rx * y1 * y1 + ry * ry * x1 * x1;
  double co = den > 0 ? std::sqrt(std::max(0.0, num / den)) : 0;
  if (large == sweep) co = -co;
  const double cxp = co * rx * y1 / ry, cyp = -co * ry * x1 / rx;
  const double cx = cp * cxp - sp * cyp + (p0.x + p1.x) / 2, cy = sp * cxp + cp * cyp + (p0.y + p1.y) / 2;
  auto angle = [](double ux, double uy, double vx, double vy) {
    return std::atan2(ux * vy - uy * vx, ux * vx + uy * vy);
  };
  const double t1 = angle(1, 0, (x1 - cxp) / rx, (y1 - cyp) / ry);
  double dt = angle((x1 - cxp) / rx, (y1 - cyp) / ry, (-x1 - cxp) / rx, (-y1 - cyp) / ry);
  if (!sweep && dt > 0) dt -= 2 * M_PI;
  if (sweep && dt < 0) dt += 2 * M_PI;
  const int n = std::max(1, static_cast<int>(std::ceil(std::fabs(dt) / (M_PI / 4) - 1e-9)));
  const double step = dt / n, k = 4.0 / 3 * std::tan(step / 4);
  auto at = [&](double t) {
    const double x = rx * std::cos(t), y = ry * std::sin(t);
    return Point{cp * x - sp * y + cx, sp * x + cp * y + cy};
  };
  auto deriv = [&](double t) {
    const double x = -rx * std::sin(t), y = ry * std::cos(t);
    return Point{cp * x - sp * y, sp * x + cp * y};
  };
  for (int q = 0; q < n; ++q) {
    const double a = t1 + q * step, b = a + step;
    const Point pa = at(a), pb = q == n - 1 ? p1 : at(b), da = deriv(a), db = deriv(b);
    pts.push_back({pa.x + k * da.x, pa.y + k * da.y});
    pts.push_back({pb.x - k * db.x, pb.y - k * db.y});
    pts.push_back(pb);
  }
}

}  // namespace

void closeSub(SubPath& s) {
  const Point a = s.pts.back(), b = s.pts.front();
  if (a.x != b.x || a.y != b.y) s.pts.insert(s.pts.end(), {lerp(a, b, 1.0 / 3), lerp(a, b, 2.0 / 3), b});
  s.closed = true;
}

bool parsePathData(const std::string& d, std::vector<SubPath>* out, std::string* error) {
  out->clear();
  Scanner sc{d.data(), d.data() + d.size()};
  Point cur, start, lastCtrl;
  char prev = 0, cmd = 0;
  SubPath* sub = nullptr;
  auto fail = [&](const std::string& what) {
    *error = what + " at character " + std::to_string(sc.p - d.data());
    return false;
  };
  auto need = [&]() -> bool {
    if (!sub) return false;
    return true;
  };
  while (!sc.done()) {
    if (std::isalpha(static_cast<unsigned char>(*sc.p))) {
      if (!std::strchr("MmLlHhVvCcSsQqTtAaZz", *sc.p)) return fail(std::string("unknown command '") + *sc.p + "'");
      if (out->empty() && *sc.p != 'M' && *sc.p != 'm') return fail("path data must start with M");
      cmd = *sc.p++;
    } else if (cmd == 0) {
      return fail("path data must start with a command");
    } else if (cmd == 'Z' || cmd == 'z') {
      return fail("numbers after Z");
    }
    // Implicit repeats: after M, further pairs are L.
    const bool rel = std::islower(static_cast<unsigned char>(cmd));
    const char up = static_cast<char>(std::toupper(static_cast<unsigned char>(cmd)));
    if (up != 'Z' && up != 'M' && !sub) {
      // Drawing after Z continues from the closed subpath's start.
      out->push_back({{start}, false});
      sub = &out->back();
    }
    double v[7];
    auto nums = [&](int n, int first = 0) {
      for (int k = first; k < first + n; ++k) {
        if (!sc.number(&v[k])) return false;
        sc.skipSep();
      }
      return true;
    };
    auto off = [&](double x, double y) { return rel ? Point{cur.x + x, cur.y + y} : Point{x, y}; };
    switch (up) {
      case 'Z':
        if (sub) {
          closeSub(*sub);
          sub = nullptr;
        }
        cur = start;
        break;
      case 'M': {
        if (!nums(2)) return fail("M needs two numbers");
        cur = off(v[0], v[1]);
        start = cur;
        out->push_back({{cur}, false});
        sub = &out->back();
        cmd = rel ? 'l' : 'L';
        break;
      }
      case 'L': case 'H': case 'V': {
        Point p;
        if (up == 'L') {
          if (!nums(2)) return fail("L needs two numbers");
          p = off(v[0], v[1]);
        } else {
          if (!nums(1)) return fail(std::string(1, cmd) + " needs a number");
          p = up == 'H' ? Point{rel ? cur.x + v[0] : v[0], cur.y} : Point{cur.x, rel ? cur.y + v[0] : v[0]};
        }
        if (!need()) return fail("no current point");
        sub->pts.insert(sub->pts.end(), {lerp(cur, p, 1.0 / 3), lerp(cur, p, 2.0 / 3), p});
        cur = p;
        break;
      }
      case 'C': case 'S': {
        Point c1, c2, p;
        if (up == 'C') {
          if (!nums(6)) return fail("C needs six numbers");
          c1 = off(v[0], v[1]), c2 = off(v[2], v[3]), p = off(v[4], v[5]);
        } else {
          if (!nums(4)) return fail("S needs four numbers");
          const char pu = static_cast<char>(std::toupper(static_cast<unsigned char>(prev)));
          c1 = (pu == 'C' || pu == 'S') ? Point{2 * cur.x - lastCtrl.x, 2 * cur.y - lastCtrl.y} : cur;
          c2 = off(v[0], v[1]), p = off(v[2], v[3]);
        }
        sub->pts.insert(sub->pts.end(), {c1, c2, p});
        lastCtrl = c2;
        cur = p;
        break;
      }
      case 'Q': case 'T': {
        Point q, p;
        if (up == 'Q') {
          if (!nums(4)) return fail("Q needs four numbers");
          q = off(v[0], v[1]), p = off(v[2], v[3]);
        } else {
          if (!nums(2)) return fail("T needs two numbers");
          const char pu = static_cast<char>(std::toupper(static_cast<unsigned char>(prev)));
          q = (pu == 'Q' || pu == 'T') ? Point{2 * cur.x - lastCtrl.x, 2 * cur.y - lastCtrl.y} : cur;
          p = off(v[0], v[1]);
        }
        sub->pts.insert(sub->pts.end(), {lerp(cur, q, 2.0 / 3), lerp(p, q, 2.0 / 3), p});
        lastCtrl = q;
        cur = p;
        break;
      }
      case 'A': {
        bool large, sweep;
        if (!nums(3)) return fail("A needs radii and an angle");
        if (!sc.flag(&large)) return fail("bad large-arc flag");
        sc.skipSep();
        if (!sc.flag(&sweep)) return fail("bad sweep flag");
        sc.skipSep();
        if (!nums(2, 3)) return fail("A needs an end point");
        const Point p = off(v[3], v[4]);
        arcTo(sub->pts, cur, v[0], v[1], v[2], large, sweep, p);
        cur = p;
        break;
      }
    }
    prev = up == 'M' ? 'M' : cmd;
    if (up == 'Z') cmd = 0;
    if (up == 'Z' && !sc.done() && !std::isalpha(static_cast<unsigned char>(*sc.p))) return fail("numbers after Z");
  }
  return true;
}

namespace {
struct Named {
  const char* name;
  unsigned rgb;
};
const Named kNamed[] = {
    {"aliceblue", 0xf0f8ff}, {"antiquewhite", 0xfaebd7}, {"aqua", 0x00ffff}, {"aquamarine", 0x7fffd4},
    {"azure", 0xf0ffff}, {"beige", 0xf5f5dc}, {"bisque", 0xffe4c4}, {"black", 0x000000},
    {"blanchedalmond", 0xffebcd}, {"blue", 0x0000ff}, {"blueviolet", 0x8a2be2}, {"brown", 0xa52a2a},
    {"burlywood", 0xdeb887}, {"cadetblue", 0x5f9ea0}, {"chartreuse", 0x7fff00}, {"chocolate", 0xd2691e},
    {"coral", 0xff7f50}, {"cornflowerblue", 0x6495ed}, {"cornsilk", 0xfff8dc}, {"crimson", 0xdc143c},
    {"cyan", 0x00ffff}, {"darkblue", 0x00008b}, {"darkcyan", 0x008b8b}, {"darkgoldenrod", 0xb8860b},
    {"darkgray", 0xa9a9a9}, {"darkgreen", 0x006400}, {"darkgrey", 0xa9a9a9}, {"darkkhaki", 0xbdb76b},
    {"darkmagenta", 0x8b008b}, {"darkolivegreen", 0x556b2f}, {"darkorange", 0xff8c00}, {"darkorchid", 0x9932cc},
    {"darkred", 0x8b0000}, {"darksalmon", 0xe9967a}, {"darkseagreen", 0x8fbc8f}, {"darkslateblue", 0x483d8b},
    {"darkslategray", 0x2f4f4f}, {"darkslategrey", 0x2f4f4f}, {"darkturquoise", 0x00ced1}, {"darkviolet", 0x9400d3},
    {"deeppink", 0xff1493}, {"deepskyblue", 0x00bfff}, {"dimgray", 0x696969}, {"dimgrey", 0x696969},
    {"dodgerblue", 0x1e90ff}, {"firebrick", 0xb22222}, {"floralwhite", 0xfffaf0}, {"forestgreen", 0x228b22},
    {"fuchsia", 0xff00ff}, {"gainsboro", 0xdcdcdc}, {"ghostwhite", 0xf8f8ff}, {"gold", 0xffd700},
    {"goldenrod", 0xdaa520}, {"gray", 0x808080}, {"grey", 0x808080}, {"green", 0x008000},
    {"greenyellow", 0xadff2f}, {"honeydew", 0xf0fff0}, {"hotpink", 0xff69b4}, {"indianred", 0xcd5c5c},
    {"indigo", 0x4b0082}, {"ivory", 0xfffff0}, {"khaki", 0xf0e68c}, {"lavender", 0xe6e6fa},
    {"lavenderblush", 0xfff0f5}, {"lawngreen", 0x7cfc00}, {"lemonchiffon", 0xfffacd}, {"lightblue", 0xadd8e6},
    {"lightcoral", 0xf08080}, {"lightcyan", 0xe0ffff}, {"lightgoldenrodyellow", 0xfafad2}, {"lightgray", 0xd3d3d3},
    {"lightgreen", 0x90ee90}, {"lightgrey", 0xd3d3d3}, {"lightpink", 0xffb6c1}, {"lightsalmon", 0xffa07a},
    {"lightseagreen", 0x20b2aa}, {"lightskyblue", 0x87cefa}, {"lightslategray", 0x778899}, {"lightslategrey", 0x778899},
    {"lightsteelblue", 0xb0c4de}, {"lightyellow", 0xffffe0}, {"lime", 0x00ff00}, {"limegreen", 0x32cd32},
    {"linen", 0xfaf0e6}, {"magenta", 0xff00ff}, {"maroon", 0x800000}, {"mediumaquamarine", 0x66cdaa},
    {"mediumblue", 0x0000cd}, {"mediumorchid", 0xba55d3}, {"mediumpurple", 0x9370db}, {"mediumseagreen", 0x3cb371},
    {"mediumslateblue", 0x7b68ee}, {"mediumspringgreen", 0x00fa9a}, {"mediumturquoise", 0x48d1cc},
    {"mediumvioletred", 0xc71585}, {"midnightblue", 0x191970}, {"mintcream", 0xf5fffa}, {"mistyrose", 0xffe4e1},
    {"moccasin", 0xffe4b5}, {"navajowhite", 0xffdead}, {"navy", 0x000080}, {"oldlace", 0xfdf5e6},
    {"olive", 0x808000}, {"olivedrab", 0x6b8e23}, {"orange", 0xffa500}, {"orangered", 0xff4500},
    {"orchid", 0xda70d6}, {"palegoldenrod", 0xeee8aa}, {"palegreen", 0x98fb98}, {"paleturquoise", 0xafeeee},
    {"palevioletred", 0xdb7093}, {"papayawhip", 0xffefd5}, {"peachpuff", 0xffdab9}, {"peru", 0xcd853f},
    {"pink", 0xffc0cb}, {"plum", 0xdda0dd}, {"powderblue", 0xb0e0e6}, {"purple", 0x800080},
    {"rebeccapurple", 0x663399}, {"red", 0xff0000}, {"rosybrown", 0xbc8f8f}, {"royalblue", 0x4169e1},
    {"saddlebrown", 0x8b4513}, {"salmon", 0xfa8072}, {"sandybrown", 0xf4a460}, {"seagreen", 0x2e8b57},
    {"seashell", 0xfff5ee}, {"sienna", 0xa0522d}, {"silver", 0xc0c0c0}, {"skyblue", 0x87ceeb},
    {"slateblue", 0x6a5acd}, {"slategray", 0x708090}, {"slategrey", 0x708090}, {"snow", 0xfffafa},
    {"springgreen", 0x00ff7f}, {"steelblue", 0x4682b4}, {"tan", 0xd2b48c}, {"teal", 0x008080},
    {"thistle", 0xd8bfd8}, {"tomato", 0xff6347}, {"turquoise", 0x40e0d0}, {"violet", 0xee82ee},
    {"wheat", 0xf5deb3}, {"white", 0xffffff}, {"whitesmoke", 0xf5f5f5}, {"yellow", 0xffff00},
    {"yellowgreen", 0x9acd32}};
}  // namespace

bool parseColour(const std::string& text, double* r, double* g, double* b) {
  std::string s = trim(text);
  std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return std::tolower(c); });
  auto hex = [](char c) { return std::isdigit(static_cast<unsigned char>(c)) ? c - '0' : c - 'a' + 10; };
  auto ishex = [](const std::string& x) {
    return std::all_of(x.begin(), x.end(), [](unsigned char c) { return std::isxdigit(c); });
  };
  if (!s.empty() && s[0] == '#') {
    const std::string h = s.substr(1);
    if (!ishex(h)) return false;
    if (h.size() == 3) {
      *r = hex(h[0]) * 17 / 255.0, *g = hex(h[1]) * 17 / 255.0, *b = hex(h[2]) * 17 / 255.0;
      return true;
    }
    if (h.size() == 6) {
      *r = (hex(h[0]) * 16 + hex(h[1])) / 255.0, *g = (hex(h[2]) * 16 + hex(h[3])) / 255.0,
      *b = (hex(h[4]) * 16 + hex(h[5])) / 255.0;
      return true;
    }
    return false;
  }
  if (s.rfind("rgb(", 0) == 0 && s.back() == ')') {
    std::string inner = s.substr(4, s.size() - 5);
    double v[3];
    size_t at = 0;
    for (int k = 0; k < 3; ++k) {
      size_t comma = inner.find(',', at);
      if ((k < 2) != (comma != std::string::npos)) return false;
      std::string part = trim(inner.substr(at, comma == std::string::npos ? std::string::npos : comma - at));
      const bool pct = !part.empty() && part.back() == '%';
      if (pct) part.pop_back();
      double x;
      auto res = std::from_chars(part.data(), part.data() + part.size(), x);
      if (res.ec != std::errc() || res.ptr != part.data() + part.size()) return false;
      v[k] = std::clamp(pct ? x / 100 : x / 255, 0.0, 1.0);
      at = comma + 1;
    }
    *r = v[0], *g = v[1], *b = v[2];
    return true;
  }
  for (const Named& n : kNamed)
    if (s == n.name) {
      *r = ((n.rgb >> 16) & 255) / 255.0, *g = ((n.rgb >> 8) & 255) / 255.0, *b = (n.rgb & 255) / 255.0;
      return true;
    }
  return false;
}

void parseStyleAttribute(const std::string& s, std::map<std::string, std::string>* props) {
  size_t at = 0;
  while (at < s.size()) {
    size_t semi = s.find(';', at);
    if (semi == std::string::npos) semi = s.size();
    const std::string decl = s.substr(at, semi - at);
    const size_t colon = decl.find(':');
    if (colon != std::string::npos) {
      std::string v = trim(decl.substr(colon + 1));
      if (const size_t imp = v.find("!important"); imp != std::string::npos) v = trim(v.substr(0, imp));
      (*props)[trim(decl.substr(0, colon))] = v;
    }
    at = semi + 1;
  }
}

SubPath roundedRect(double x, double y, double w, double h, double rx, double ry) {
  SubPath s;
  auto line = [&](Point p) {
    const Point a = s.pts.back();
    s.pts.insert(s.pts.end(), {lerp(a, p, 1.0 / 3), lerp(a, p, 2.0 / 3), p});
  };
  if (rx <= 0 || ry <= 0) {
    s.pts = {{x, y}};
    line({x + w, y});
    line({x + w, y + h});
    line({x, y + h});
    line({x, y});
    s.closed = true;
    return s;
  }
  const double k = 0.5522847498307936;
  s.pts = {{x + rx, y}};
  line({x + w - rx, y});
  s.pts.insert(s.pts.end(), {{x + w - rx + k * rx, y}, {x + w, y + ry - k * ry}, {x + w, y + ry}});
  line({x + w, y + h - ry});
  s.pts.insert(s.pts.end(), {{x + w, y + h - ry + k * ry}, {x + w - rx + k * rx, y + h}, {x + w - rx, y + h}});
  line({x + rx, y + h});
  s.pts.insert(s.pts.end(), {{x + rx - k * rx, y + h}, {x, y + h - ry + k * ry}, {x, y + h - ry}});
  line({x, y + ry});
  s.pts.insert(s.pts.end(), {{x, y + ry - k * ry}, {x + rx - k * rx, y}, {x + rx, y}});
  s.closed = true;
  return s;
}

SubPath ellipse(double cx, double cy, double rx, double ry) {
  const double k = 0.5522847498307936;
  SubPath s;
  s.pts = {{cx + rx, cy},          {cx + rx, cy + k * ry}, {cx + k * rx, cy + ry}, {cx, cy + ry},
           {cx - k * rx, cy + ry}, {cx - rx, cy + k * ry}, {cx - rx, cy},          {cx - rx, cy - k * ry},
           {cx - k * rx, cy - ry}, {cx, cy - ry},          {cx + k * rx, cy - ry}, {cx + rx, cy - k * ry},
           {cx + rx, cy}};
  s.closed = true;
  return s;
}

}  // namespace lb::io::svg
