// SVG attribute syntax: numbers, lengths, transforms, path data, colours
// and style declarations.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace lb::io::svg {

struct Point {
  double x = 0, y = 0;
};

// x' = a x + c y + e, y' = b x + d y + f.
struct Affine {
  double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;
  Point apply(Point p) const { return {a * p.x + c * p.y + e, b * p.x + d * p.y + f}; }
  // (A * B) applies B first.
  Affine operator*(const Affine& o) const {
    return {a * o.a + c * o.b, b * o.a + d * o.b, a * o.c + c * o.d, b * o.c + d * o.d, a * o.e + c * o.f + e,
            b * o.e + d * o.f + f};
  }
};

// One subpath as a chain of cubics: 3m + 1 points. A closed subpath ends
// where it starts (a straight closing piece is added when needed).
struct SubPath {
  std::vector<Point> pts;
  bool closed = false;
};

inline Point lerp(Point a, Point b, double t) { return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t}; }

std::string trim(const std::string& s);
// Shortest text that reads back as the same double.
std::string fmt(double x);

// A number with an optional unit (px, pt, pc, mm, cm, in; "%" refused).
std::optional<double> parseLength(const std::string& s);
// Numbers separated by white space and/or commas.
bool parseNumbers(const std::string& s, std::vector<double>* out);
// matrix, translate, scale, rotate, skewX, skewY lists.
std::optional<Affine> parseTransform(const std::string& s);
// Every command, absolute and relative: M L H V C S Q T A Z. Lines and
// quadratics become exact cubics, arcs cubics within 1e-6 of the arc.
bool parsePathData(const std::string& d, std::vector<SubPath>* out, std::string* error);
// #rgb, #rrggbb, rgb(r, g, b) (numbers or percentages) and the CSS names.
bool parseColour(const std::string& s, double* r, double* g, double* b);
// "name: value; ..." added to (and overriding) props.
void parseStyleAttribute(const std::string& s, std::map<std::string, std::string>* props);

void closeSub(SubPath& s);
SubPath roundedRect(double x, double y, double w, double h, double rx, double ry);
SubPath ellipse(double cx, double cy, double rx, double ry);

}  // namespace lb::io::svg
