// The document model: art tree, paint orders, walks, matching and selection.
#include "host/Document.h"

#include <algorithm>
#include <functional>
#include <optional>

#include "host/Geometry.h"

ArtObject::ArtObject() = default;
ArtObject::~ArtObject() = default;

int ArtImage::channels() const {
  const int colour = space == kRGBColorSpace ? 3 : space == kCMYKColorSpace ? 4 : 1;
  return colour + (alpha ? 1 : 0);
}

size_t ArtImage::expectedBytes() const {
  if (width <= 0 || height <= 0) return 0;
  return static_cast<size_t>(width) * static_cast<size_t>(height) * static_cast<size_t>(channels()) *
         static_cast<size_t>(bits / 8);
}

double ArtImage::channel(int32_t x, int32_t row, int c) const {
  if (x < 0 || row < 0 || x >= width || row >= height || c < 0 || c >= channels()) return 0;
  const size_t bytesPerChannel = static_cast<size_t>(bits / 8);
  const size_t index =
      ((static_cast<size_t>(row) * static_cast<size_t>(width) + static_cast<size_t>(x)) * channels() + c) *
      bytesPerChannel;
  if (index + bytesPerChannel > pixels.size()) return 0;
  if (bytesPerChannel == 2) return ((pixels[index] << 8) | pixels[index + 1]) / 65535.0;
  return pixels[index] / 255.0;
}

namespace lb::host {
namespace {

bool validType(int16_t type) {
  switch (type) {
    case kGroupArt:
    case kPathArt:
    case kCompoundPathArt:
    case kPlacedArt:
    case kRasterArt:
    case kMeshArt:
      return true;
    default:
      return false;
  }
}

bool isAncestorOrSelf(const ArtObject* maybeAncestor, const ArtObject* art) {
  for (const ArtObject* a = art; a; a = a->parent)
    if (a == maybeAncestor) return true;
  return false;
}

}  // namespace

Document::Document() = default;
Document::~Document() = default;

// ---- layers ---------------------------------------------------------------

ArtObject* Document::addLayer(const std::string& name, bool onTop) {
  auto layer = std::make_unique<ArtObject>();
  layer->type = kGroupArt;
  layer->isLayer = true;
  layer->name = name;
  ArtObject* raw = layer.get();
  live_.insert(raw);
  if (onTop)
    layers_.insert(layers_.begin(), std::move(layer));
  else
    layers_.push_back(std::move(layer));
  return raw;
}

ArtObject* Document::currentLayer() {
  if (layers_.empty()) return addLayer("Layer 1");
  for (auto& l : layers_)
    if (!l->hidden() && !l->locked()) return l.get();
  return nullptr;
}

// ---- document properties --------------------------------------------------

ArtObject* Document::keyArt() const { return keyArtId.empty() ? nullptr : findById(keyArtId); }

GraphicStyle* Document::addStyle(GraphicStyle style) {
  if (GraphicStyle* existing = styleByName(style.name)) {
    *existing = std::move(style);
    return existing;
  }
  styles_.push_back(std::make_unique<GraphicStyle>(std::move(style)));
  return styles_.back().get();
}

GraphicStyle* Document::styleByName(const std::string& name) const {
  for (const auto& s : styles_)
    if (s->name == name) return s.get();
  return nullptr;
}

bool Document::ownsStyle(const GraphicStyle* style) const {
  for (const auto& s : styles_)
    if (s.get() == style) return true;
  return false;
}

// ---- tree bookkeeping -----------------------------------------------------

bool Document::find(const ArtObject* art) const {
  if (live_.count(art) == 0) return false;
  lastFound_[1] = lastFound_[0];
  lastFound_[0] = art;
  return true;
}

ArtObject* Document::findById(const std::string& id) const {
  if (id.empty()) return nullptr;
  for (ArtObject* a : allArt())
    if (a->id == id) return a;
  return nullptr;
}

void Document::registerTree(ArtObject* art) {
  live_.insert(art);
  for (auto& c : art->children) {
    c->parent = art;
    registerTree(c.get());
  }
}

void Document::unregisterTree(const ArtObject* art) {
  live_.erase(art);
  for (const ArtObject*& found : lastFound_)
    if (art == found) found = nullptr;
  for (const auto& c : art->children) unregisterTree(c.get());
}

std::vector<std::unique_ptr<ArtObject>>& Document::siblingsOf(const ArtObject* art) {
  return art->parent ? art->parent->children : layers_;
}

const std::vector<std::unique_ptr<ArtObject>>& Document::siblingsOf(const ArtObject* art) const {
  return art->parent ? art->parent->children : layers_;
}

size_t Document::indexOf(const ArtObject* art) const {
  const auto& sibs = siblingsOf(art);
  if (art->indexHint < sibs.size() && sibs[art->indexHint].get() == art) return art->indexHint;
  for (size_t k = 0; k < sibs.size(); ++k) sibs[k]->indexHint = k;
  return art->indexHint < sibs.size() && sibs[art->indexHint].get() == art ? art->indexHint : sibs.size();
}

std::unique_ptr<ArtObject> Document::detach(ArtObject* art) {
  auto& sibs = siblingsOf(art);
  const size_t k = indexOf(art);
  if (k >= sibs.size()) return nullptr;
  auto it = sibs.begin() + static_cast<std::ptrdiff_t>(k);
  std::unique_ptr<ArtObject> owned = std::move(*it);
  sibs.erase(it);
  owned->parent = nullptr;
  return owned;
}

// Where an insertion goes: the container, and either an end of its child
// list or a place next to one of its children.
struct Document::Target {
  ArtObject* parent = nullptr;
  ArtObject* anchor = nullptr;  // insert next to this child
  bool below = false;           // below the anchor (else above)
  bool atTop = true;            // without an anchor: top or bottom of the list
};

AIErr Document::resolve(int16_t paintOrder, ArtObject* prep, const ArtObject* moving, Target& t) {
  if (prep && !contains(prep)) return kNoSuchArtErr;
  switch (paintOrder) {
    case kPlaceAbove:
    case kPlaceBelow:
      if (!prep || prep->isLayer) return kBadParameterErr;
      t.parent = prep->parent;
      t.anchor = prep;
      t.below = paintOrder == kPlaceBelow;
      break;
    case kPlaceInsideOnTop:
    case kPlaceInsideOnBottom:
      if (!prep) return kBadParameterErr;
      if (!prep->isContainer()) return kWrongArtTypeErr;
      t.parent = prep;
      t.atTop = paintOrder == kPlaceInsideOnTop;
      break;
    case kPlaceAboveAll:
    case kPlaceBelowAll:
      if (prep) {
        t.parent = prep;
        while (t.parent->parent) t.parent = t.parent->parent;  // the layer holding prep
      } else {
        t.parent = currentLayer();
      }
      t.atTop = paintOrder == kPlaceAboveAll;
      break;
    default:
      return kBadParameterErr;
  }
  if (!t.parent) return kBadParameterErr;
  if (t.parent->type == kCompoundPathArt && moving->type != kPathArt) return kWrongArtTypeErr;
  // Art cannot go next to or inside itself or its own descendants.
  if (t.anchor == moving || isAncestorOrSelf(moving, t.parent)) return kBadParameterErr;
  return kNoErr;
}

ArtObject* Document::place(std::unique_ptr<ArtObject> art, const Target& t) {
  auto& kids = t.parent->children;
  size_t index = t.atTop ? 0 : kids.size();
  if (t.anchor) {
    index = indexOf(t.anchor) + (t.below ? 1 : 0);
  }
  ArtObject* raw = art.get();
  raw->parent = t.parent;
  raw->indexHint = index;
  kids.insert(kids.begin() + static_cast<std::ptrdiff_t>(index), std::move(art));
  registerTree(raw);
  return raw;
}

AIErr Document::insert(std::unique_ptr<ArtObject> art, int16_t paintOrder, ArtObject* prep, ArtObject** out) {
  Target t;
  if (AIErr err = resolve(paintOrder, prep, art.get(), t)) return err;
  ArtObject* raw = place(std::move(art), t);
  if (out) *out = raw;
  return kNoErr;
}

ArtObject* Document::appendChild(ArtObject* parent, std::unique_ptr<ArtObject> art, bool onTop) {
  ArtObject* raw = art.get();
  raw->parent = parent;
  auto& kids = parent->children;
  raw->indexHint = onTop ? 0 : kids.size();
  if (onTop)
    kids.insert(kids.begin(), std::move(art));
  else
    kids.push_back(std::move(art));
  registerTree(raw);
  return raw;
}

// ---- art operations -------------------------------------------------------

AIErr Document::newArt(int16_t type, int16_t paintOrder, ArtObject* prep, ArtObject** out) {
  if (!validType(type)) return kBadParameterErr;
  auto art = std::make_unique<ArtObject>();
  art->type = static_cast<AIArtType>(type);
  if (type == kPathArt) {
    // A new path: not filled, stroked black, one unit wide.
    art->style.fillPaint = false;
    art->style.fill.color.kind = kGrayColor;
    art->style.fill.color.c.g.gray = 0;
    art->style.strokePaint = true;
    art->style.stroke.color.kind = kGrayColor;
    art->style.stroke.color.c.g.gray = 1;
    art->style.stroke.width = 1;
  } else if (type == kMeshArt) {
    art->mesh = std::make_unique<GradientMesh>();
  }
  return insert(std::move(art), paintOrder, prep, out);
}

AIErr Document::disposeArt(ArtObject* art) {
  if (!contains(art)) return kNoSuchArtErr;
  unregisterTree(art);
  auto owned = detach(art);  // destroyed here with its subtree
  return owned ? kNoErr : kCantHappenErr;
}

AIErr Document::reorderArt(ArtObject* art, int16_t paintOrder, ArtObject* prep) {
  if (!contains(art)) return kNoSuchArtErr;
  if (art->isLayer) return kBadParameterErr;
  Target t;
  if (AIErr err = resolve(paintOrder, prep, art, t)) return err;
  unregisterTree(art);
  place(detach(art), t);
  return kNoErr;
}

// A copy made by the user: every field but the ids (a copy is new art) and
// the layer flag (a copied layer becomes a group).
std::unique_ptr<ArtObject> Document::deepCopy(const ArtObject& src) const {
  auto a = exactCopy(src);
  auto strip = [](auto& self, ArtObject& art) -> void {
    art.id.clear();
    art.isLayer = false;
    for (auto& c : art.children) {
      c->parent = &art;
      self(self, *c);
    }
  };
  strip(strip, *a);
  return a;
}

std::unique_ptr<ArtObject> Document::exactCopy(const ArtObject& src) {
  auto a = std::make_unique<ArtObject>();
  a->type = src.type;
  a->id = src.id;
  a->name = src.name;
  a->userAttr = src.userAttr;
  a->opacity = src.opacity;
  a->blendMode = src.blendMode;
  a->graphicStyle = src.graphicStyle;
  a->pixelPerfect = src.pixelPerfect;
  a->isLayer = src.isLayer;
  a->segments = src.segments;
  a->segmentSelection = src.segmentSelection;
  a->closed = src.closed;
  a->style = src.style;
  a->image = src.image;
  if (src.mesh) a->mesh = std::make_unique<GradientMesh>(*src.mesh);
  a->children.reserve(src.children.size());
  for (const auto& c : src.children) a->children.push_back(exactCopy(*c));
  return a;
}

std::unique_ptr<Document> Document::clone() const {
  auto d = std::make_unique<Document>();
  d->artboard = artboard;
  d->keyArtId = keyArtId;
  for (const auto& s : styles_) d->styles_.push_back(std::make_unique<GraphicStyle>(*s));
  for (const auto& l : layers_) {
    d->layers_.push_back(exactCopy(*l));
    d->layers_.back()->parent = nullptr;
    d->registerTree(d->layers_.back().get());
  }
  return d;
}

AIErr Document::duplicateArt(ArtObject* art, int16_t paintOrder, ArtObject* prep, ArtObject** out) {
  if (!contains(art)) return kNoSuchArtErr;
  if (art->isLayer) return kBadParameterErr;
  auto copy = deepCopy(*art);
  return insert(std::move(copy), paintOrder, prep, out);
}

// ---- walks ----------------------------------------------------------------

ArtObject* Document::parentOf(const ArtObject* art) { return art->parent; }

ArtObject* Document::firstChild(const ArtObject* art) {
  return art->children.empty() ? nullptr : art->children.front().get();
}

ArtObject* Document::nextSibling(const ArtObject* art) const {
  const auto& sibs = siblingsOf(art);
  const size_t k = indexOf(art);
  return k + 1 < sibs.size() ? sibs[k + 1].get() : nullptr;
}

ArtObject* Document::priorSibling(const ArtObject* art) const {
  const auto& sibs = siblingsOf(art);
  const size_t k = indexOf(art);
  return k > 0 && k < sibs.size() ? sibs[k - 1].get() : nullptr;
}

std::vector<ArtObject*> Document::allArt() const {
  std::vector<ArtObject*> out;
  std::function<void(ArtObject*)> walk = [&](ArtObject* a) {
    out.push_back(a);
    for (auto& c : a->children) walk(c.get());
  };
  for (const auto& l : layers_) walk(l.get());
  return out;
}

// ---- geometry -------------------------------------------------------------

std::optional<AIRealRect> Document::bounds(const ArtObject* art) const {
  switch (art->type) {
    case kPathArt: {
      const auto& s = art->segments;
      if (s.empty()) return std::nullopt;
      AIRealRect r{s[0].p.h, s[0].p.v, s[0].p.h, s[0].p.v};
      const size_t pieces = art->closed ? s.size() : s.size() - 1;
      for (size_t k = 0; k < pieces; ++k) {
        const AIPathSegment& a = s[k];
        const AIPathSegment& b = s[(k + 1) % s.size()];
        geom::unite(r, geom::bounds(AIRealBezier{a.p, a.out, b.in, b.p}));
      }
      return r;
    }
    case kRasterArt:
    case kPlacedArt: {
      const ArtImage& im = art->image;
      const AIRealPoint corners[4] = {{0, 0}, {double(im.width), 0}, {0, -double(im.height)},
                                      {double(im.width), -double(im.height)}};
      AIRealPoint p = geom::transform(im.matrix, corners[0]);
      AIRealRect r{p.h, p.v, p.h, p.v};
      for (int k = 1; k < 4; ++k) {
        p = geom::transform(im.matrix, corners[k]);
        geom::unite(r, AIRealRect{p.h, p.v, p.h, p.v});
      }
      return r;
    }
    case kMeshArt:
      if (art->mesh) return art->mesh->bounds();
      return std::nullopt;
    default: {
      std::optional<AIRealRect> r;
      for (const auto& c : art->children) {
        auto cb = bounds(c.get());
        if (!cb) continue;
        if (r)
          geom::unite(*r, *cb);
        else
          r = cb;
      }
      return r;
    }
  }
}

void Document::transformArt(ArtObject* art, const AIRealMatrix& m) {
  switch (art->type) {
    case kPathArt:
      for (auto& s : art->segments) {
        s.p = geom::transform(m, s.p);
        s.in = geom::transform(m, s.in);
        s.out = geom::transform(m, s.out);
      }
      break;
    case kRasterArt:
    case kPlacedArt:
      art->image.matrix = geom::concat(art->image.matrix, m);
      break;
    case kMeshArt:
      if (art->mesh) art->mesh->transform(m);
      break;
    default:
      for (auto& c : art->children) transformArt(c.get(), m);
      break;
  }
}

// ---- matching -------------------------------------------------------------

std::vector<ArtObject*> Document::matchingArt(const AIMatchingArtSpec* patterns, int numPatterns) const {
  std::vector<ArtObject*> out;
  if (!patterns || numPatterns <= 0) return out;
  // inherited: hidden/locked bits of the enclosing groups and layer.
  std::function<void(ArtObject*, int32_t)> walk = [&](ArtObject* a, int32_t inherited) {
    const int32_t effective = (a->userAttr & kArtSelected) | ((a->userAttr | inherited) & (kArtHidden | kArtLocked));
    if (!a->isLayer) {
      for (int k = 0; k < numPatterns; ++k) {
        const AIMatchingArtSpec& s = patterns[k];
        if (s.type != kAnyArt && s.type != a->type) continue;
        if ((effective & s.whichAttr) != (s.attr & s.whichAttr)) continue;
        out.push_back(a);
        break;
      }
    }
    const int32_t down = (a->userAttr | inherited) & (kArtHidden | kArtLocked);
    for (auto& c : a->children) walk(c.get(), down);
  };
  for (const auto& l : layers_) walk(l.get(), 0);
  return out;
}

// ---- selection ------------------------------------------------------------

void Document::setSelected(ArtObject* art, bool on) {
  const bool was = art->selected();
  if (on)
    art->userAttr |= kArtSelected;
  else
    art->userAttr &= ~kArtSelected;
  switch (art->type) {
    case kMeshArt:
      // Switching the attribute off clears the vertex selection; switching
      // it on selects the whole mesh. Setting it on a mesh that is already
      // selected keeps a partial vertex selection (only an empty one becomes
      // whole), so commands that want the whole mesh switch it off first.
      if (art->mesh) {
        if (!on)
          art->mesh->clearSelection();
        else if (!was || art->mesh->isSelectionEmpty())
          art->mesh->selectAll();
      }
      break;
    case kPathArt:
      // A selected path with no anchor state recorded has every anchor
      // selected, so switching on from off means "no anchor state".
      if (!on || !was)
        std::fill(art->segmentSelection.begin(), art->segmentSelection.end(), int16_t(kSegmentNotSelected));
      break;
    default:
      // Selecting a group (or compound path) selects everything inside it.
      if (!art->isLayer)
        for (auto& c : art->children) setSelected(c.get(), on);
      break;
  }
}

int16_t Document::anchorSelection(const ArtObject* path, int k) const {
  if (k < 0 || static_cast<size_t>(k) >= path->segments.size()) return kSegmentNotSelected;
  const auto& sel = path->segmentSelection;
  const bool anyRecorded = std::any_of(sel.begin(), sel.end(), [](int16_t s) { return s != 0; });
  if (!anyRecorded) return path->selected() ? int16_t(kSegmentPointSelected) : int16_t(kSegmentNotSelected);
  return static_cast<size_t>(k) < sel.size() ? sel[k] : int16_t(kSegmentNotSelected);
}

void Document::setAnchorSelection(ArtObject* path, int k, int16_t state) {
  if (k < 0 || static_cast<size_t>(k) >= path->segments.size()) return;
  auto& sel = path->segmentSelection;
  sel.resize(path->segments.size(), kSegmentNotSelected);
  const bool anyRecorded = std::any_of(sel.begin(), sel.end(), [](int16_t s) { return s != 0; });
  if (!anyRecorded && path->selected()) std::fill(sel.begin(), sel.end(), int16_t(kSegmentPointSelected));
  sel[static_cast<size_t>(k)] = state;
  const bool any = std::any_of(sel.begin(), sel.end(), [](int16_t s) { return s != 0; });
  if (any)
    path->userAttr |= kArtSelected;
  else
    path->userAttr &= ~kArtSelected;
}

}  // namespace lb::host
