// The import and export subcommands and format-aware document reading and
// writing (SVG, PDF, PNG, .lbdoc).
#include "app/Interchange.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>

#include "io/Lbdoc.h"
#include "io/svg/Svg.h"
#include "render/Pdf.h"
#include "render/Render.h"

namespace lb::app {

namespace {

bool endsWith(const std::string& s, const std::string& tail) {
  if (s.size() < tail.size()) return false;
  for (size_t k = 0; k < tail.size(); ++k)
    if (std::tolower(static_cast<unsigned char>(s[s.size() - tail.size() + k])) != tail[k]) return false;
  return true;
}

void warn(const std::string& line, Warnings* warnings = nullptr) {
  if (warnings)
    warnings->push_back(line);
  else
    std::cerr << "latticebender: warning: " << line << "\n";
}

void writeTextAtomic(const std::string& text, const std::string& path) {
  const std::string tmp = path + ".tmp" + std::to_string(::getpid());
  {
    std::ofstream f(tmp, std::ios::binary);
    f.write(text.data(), static_cast<std::streamsize>(text.size()));
    f.close();
    if (!f) {
      std::remove(tmp.c_str());
      throw std::runtime_error("cannot write " + path);
    }
  }
  if (std::rename(tmp.c_str(), path.c_str()) != 0) {
    std::remove(tmp.c_str());
    throw std::runtime_error("cannot write " + path);
  }
}

// A picture holds what is drawn: the art tree, names, ids, selections and
// hidden art are not part of it, as expected of PDF and PNG. Art that
// would be drawn and cannot be is named.
void pictureLosses(const lb::host::Document& doc, const std::string& path, Warnings* warnings) {
  lb::io::svg::Losses losses;
  for (const ArtObject* a : doc.allArt())
    if (a->type == kPlacedArt && a->image.placedType != kPlacedImageType && !a->hidden())
      losses.add("placed content that is not an image");
  if (!losses.empty()) warn(path + " cannot hold: " + losses.text(), warnings);
}

}  // namespace

bool isSvgPath(const std::string& path) { return endsWith(path, ".svg"); }

bool isExportPath(const std::string& path) {
  return endsWith(path, ".svg") || endsWith(path, ".pdf") || endsWith(path, ".png");
}

std::vector<std::string> splitIds(const std::string& text) {
  std::vector<std::string> ids;
  std::stringstream ss(text);
  std::string id;
  while (std::getline(ss, id, ','))
    if (!id.empty()) ids.push_back(id);
  return ids;
}

std::unique_ptr<lb::host::Document> readAnyDocument(const std::string& path, const std::vector<std::string>& select,
                                                    Warnings* warnings) {
  if (!isSvgPath(path)) {
    auto doc = lb::io::readDocumentFile(path);
    for (const std::string& id : select) {
      ArtObject* a = doc->findById(id);
      if (!a) throw lb::io::FormatError(path, "--select names no art: '" + id + "'");
      doc->setSelected(a, true);
    }
    return doc;
  }
  std::ifstream f(path, std::ios::binary);
  if (!f) throw lb::io::FormatError(path, "cannot read the file");
  std::stringstream ss;
  ss << f.rdbuf();
  lb::io::svg::Losses losses;
  try {
    auto doc = lb::io::svg::readSvg(ss.str(), select, &losses);
    if (!losses.empty()) warn(path + ": not kept: " + losses.text(), warnings);
    return doc;
  } catch (const lb::io::FormatError& e) {
    throw lb::io::FormatError(path + ": " + e.path(), std::string(e.what()).substr(e.path().size() + 2));
  }
}

std::string svgText(const lb::host::Document& doc) {
  lb::io::svg::Losses losses;
  std::string text = lb::io::svg::writeSvg(doc, &losses);
  if (!losses.empty()) warn("SVG cannot hold: " + losses.text());
  return text;
}

void writeAnyDocument(const lb::host::Document& doc, const std::string& path, double scale, Warnings* warnings) {
  if (isSvgPath(path)) {
    lb::io::svg::Losses losses;
    const std::string text = lb::io::svg::writeSvg(doc, &losses);
    writeTextAtomic(text, path);
    if (!losses.empty()) warn(path + " cannot hold: " + losses.text(), warnings);
  } else if (endsWith(path, ".pdf")) {
    lb::render::writePdf(doc, path);
    pictureLosses(doc, path, warnings);
  } else if (endsWith(path, ".png")) {
    lb::render::RenderOptions options;
    options.scale = scale;
    lb::render::renderDocumentPng(doc, path, options);
    pictureLosses(doc, path, warnings);
  } else {
    lb::io::writeDocumentFileAtomic(doc, path);
  }
}

InterchangeCommands::InterchangeCommands(CLI::App& app) {
  import_ = app.add_subcommand("import", "Read an SVG file into a document");
  import_->add_option("IN", in_, "Input picture (.svg)")->required();
  import_->add_option("-o,--output", out_, "Output document (.lbdoc)")->required();
  import_->add_option("--select", select_, "Ids of the elements to select, ID,...");
  export_ = app.add_subcommand("export", "Write a document as SVG, PDF or PNG");
  export_->add_option("DOC", in_, "Input document (.lbdoc or .svg)")->required();
  export_->add_option("-o,--output", out_, "Output file (.svg, .pdf or .png)")->required();
  export_->add_option("--scale", scale_, "Pixels per document unit (PNG)");
}

bool InterchangeCommands::run(int* status) {
  const bool importing = import_->parsed();
  if (!importing && !export_->parsed()) return false;
  if (importing && !isSvgPath(in_)) {
    std::cerr << "latticebender: import reads .svg files, not '" << in_ << "'\n";
    *status = 2;
    return true;
  }
  if (!importing) {
    if (!isExportPath(out_)) {
      std::cerr << "latticebender: export writes .svg, .pdf or .png, not '" << out_ << "'\n";
      *status = 2;
      return true;
    }
    if (!(scale_ > 0) || scale_ > 64) {
      std::cerr << "latticebender: --scale must be above 0 and at most 64\n";
      *status = 2;
      return true;
    }
  }
  std::unique_ptr<lb::host::Document> doc;
  try {
    doc = readAnyDocument(in_, splitIds(select_));
  } catch (const std::exception& e) {
    const std::string what = e.what();
    std::cerr << "latticebender: " << (what.find(in_) == std::string::npos ? in_ + ": " + what : what) << "\n";
    *status = 3;
    return true;
  }
  try {
    writeAnyDocument(*doc, out_, scale_);
  } catch (const std::exception& e) {
    std::cerr << "latticebender: " << e.what() << "\n";
    *status = 4;
    return true;
  }
  *status = 0;
  return true;
}

}  // namespace lb::app
