// The host's document: layers of art objects in paint order, the named
// graphic styles, the optional artboard and the key object.
//
// An ArtObject is the object an AIArtHandle points to. The document owns
// every art object; handles stay valid until the art is disposed (or the
// document destroyed). Children are kept top of the paint order first: the
// first child is drawn last.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "AIArtSuites.h"
#include "AITypes.h"
#include "host/mesh/GradientMesh.h"

// Pixel image data of a raster or placed art object.
struct ArtImage {
  int32_t width = 0;
  int32_t height = 0;
  int16_t space = kGrayColorSpace;  // AIRasterColorSpace
  bool alpha = false;
  int16_t bits = 8;                 // bits per channel: 8 or 16 (16 is big-endian)
  AIRealMatrix matrix{1, 0, 0, 1, 0, 0};
  std::vector<uint8_t> pixels;      // rows top first, channels in space order, alpha last
  int16_t placedType = kPlacedImageType;  // placed art only

  int channels() const;             // colour channels plus alpha
  size_t expectedBytes() const;     // width * height * channels * bits / 8
  // Channel c (0..channels()-1) of pixel (x, row) scaled to 0..1.
  double channel(int32_t x, int32_t row, int c) const;
};

struct ArtObject {
  AIArtType type = kUnknownArt;
  std::string id;     // unique within the document when not empty
  std::string name;
  int32_t userAttr = 0;  // kArtSelected | kArtLocked | kArtHidden
  double opacity = 1.0;
  int32_t blendMode = kAINormalBlendingMode;
  std::string graphicStyle;  // name of a document style, empty for none
  bool pixelPerfect = false;

  ArtObject* parent = nullptr;  // the layer for top-level art; null for layers
  std::vector<std::unique_ptr<ArtObject>> children;  // top first
  bool isLayer = false;  // layers are group art at the root
  // Where this object last was in its parent's child list; checked before
  // use and refreshed for the whole list when stale, so sibling steps are
  // O(1) in the usual walks.
  mutable size_t indexHint = 0;

  // Paths.
  std::vector<AIPathSegment> segments;
  std::vector<int16_t> segmentSelection;  // one AIPathSegmentSelectionState per segment
  bool closed = false;
  // Fill and stroke of a path; for raster and placed art the fill
  // colourises a gray image when painted.
  AIPathStyle style{};

  // Raster and placed art.
  ArtImage image;

  // Mesh art.
  std::unique_ptr<lb::host::GradientMesh> mesh;

  ArtObject();
  ~ArtObject();
  ArtObject(const ArtObject&) = delete;
  ArtObject& operator=(const ArtObject&) = delete;

  bool selected() const { return (userAttr & kArtSelected) != 0; }
  bool hidden() const { return (userAttr & kArtHidden) != 0; }
  bool locked() const { return (userAttr & kArtLocked) != 0; }
  bool isContainer() const { return type == kGroupArt || type == kCompoundPathArt || isLayer; }
};

namespace lb::host {

// A named graphic style: fill, stroke (in a path style) and opacity.
struct GraphicStyle {
  std::string name;
  AIPathStyle paint{};
  double opacity = 1.0;
};

class Document {
 public:
  Document();
  ~Document();
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;
  // An independent copy of everything: layers, art with ids and
  // selection, styles, artboard, key object.
  std::unique_ptr<Document> clone() const;

  // ---- layers (top layer first) ----
  const std::vector<std::unique_ptr<ArtObject>>& layers() const { return layers_; }
  // Adds a layer at the bottom of the layer list (or at the top) and returns it.
  ArtObject* addLayer(const std::string& name, bool onTop = false);
  // The layer NewArt uses when given no reference art: the topmost layer that
  // is neither hidden nor locked; a new "Layer 1" when there is none.
  ArtObject* currentLayer();

  // ---- document properties ----
  std::optional<AIRealRect> artboard;  // left, top, right, bottom
  std::string keyArtId;                // empty: no key object
  ArtObject* keyArt() const;

  const std::vector<std::unique_ptr<GraphicStyle>>& styles() const { return styles_; }
  GraphicStyle* addStyle(GraphicStyle style);  // replaces a style of the same name
  GraphicStyle* styleByName(const std::string& name) const;
  bool ownsStyle(const GraphicStyle* style) const;

  // ---- the art tree ----
  // True when art is a live object of this document (layers included).
  bool contains(const ArtObject* art) const {
    return art && (art == lastFound_[0] || art == lastFound_[1] || find(art));
  }
  ArtObject* findById(const std::string& id) const;

  // New art of `type` placed relative to prep; prep may be null for the
  // above-all / below-all orders. Returns kNoErr, kBadParameterErr (bad
  // order, bad type, no prep where needed, inside a non-container),
  // kNoSuchArtErr.
  AIErr newArt(int16_t type, int16_t paintOrder, ArtObject* prep, ArtObject** out);
  // Removes art and its whole subtree.
  AIErr disposeArt(ArtObject* art);
  AIErr reorderArt(ArtObject* art, int16_t paintOrder, ArtObject* prep);
  // Deep copy (children, path, image, mesh) placed relative to prep. The
  // copy has no id.
  AIErr duplicateArt(ArtObject* art, int16_t paintOrder, ArtObject* prep, ArtObject** out);
  // Inserts a ready-made subtree (the file reader uses this) at the bottom of
  // parent's children, or at the top. Registers every object in it.
  ArtObject* appendChild(ArtObject* parent, std::unique_ptr<ArtObject> art, bool onTop = false);

  // Walks. A layer's parent is null; siblings are taken in the parent's
  // child list (or the layer list for layers).
  static ArtObject* parentOf(const ArtObject* art);
  static ArtObject* firstChild(const ArtObject* art);
  ArtObject* nextSibling(const ArtObject* art) const;   // the next one down
  ArtObject* priorSibling(const ArtObject* art) const;  // the next one up

  // Bounds in document coordinates; nullopt for art without geometry
  // (empty groups, meshes when the engine gives no bounds).
  std::optional<AIRealRect> bounds(const ArtObject* art) const;

  // Every art object (layers excluded) matching at least one pattern, in
  // document order from the top of the paint order down. The hidden and
  // locked bits of a pattern are tested against the art's effective state:
  // its own bit or that of any enclosing group or layer.
  std::vector<ArtObject*> matchingArt(const AIMatchingArtSpec* patterns, int numPatterns) const;

  // Selection. The selected attribute of a mesh drives its vertex selection
  // (off clears it, on selects the whole mesh); a path's anchor states are
  // cleared when it is deselected.
  void setSelected(ArtObject* art, bool on);
  // Anchor selection state of segment k of a path: a selected path with no
  // anchor state recorded has every anchor selected.
  int16_t anchorSelection(const ArtObject* path, int k) const;
  void setAnchorSelection(ArtObject* path, int k, int16_t state);

  // Applies matrix to the art's geometry (recursively for groups).
  void transformArt(ArtObject* art, const AIRealMatrix& m);

  // Every art object in document order, layers included.
  std::vector<ArtObject*> allArt() const;

 private:
  std::vector<std::unique_ptr<ArtObject>>& siblingsOf(const ArtObject* art);
  const std::vector<std::unique_ptr<ArtObject>>& siblingsOf(const ArtObject* art) const;
  std::unique_ptr<ArtObject> detach(ArtObject* art);
  // Position of art in its sibling list.
  size_t indexOf(const ArtObject* art) const;
  struct Target;
  // Where (paintOrder, prep) puts `moving`; refuses without changing anything.
  AIErr resolve(int16_t paintOrder, ArtObject* prep, const ArtObject* moving, Target& t);
  ArtObject* place(std::unique_ptr<ArtObject> art, const Target& t);
  AIErr insert(std::unique_ptr<ArtObject> art, int16_t paintOrder, ArtObject* prep, ArtObject** out);
  void registerTree(ArtObject* art);
  void unregisterTree(const ArtObject* art);
  std::unique_ptr<ArtObject> deepCopy(const ArtObject& art) const;
  static std::unique_ptr<ArtObject> exactCopy(const ArtObject& art);

  std::vector<std::unique_ptr<ArtObject>> layers_;
  std::vector<std::unique_ptr<GraphicStyle>> styles_;
  std::unordered_set<const ArtObject*> live_;
  // The two arts found last by `contains`, newest first: suite calls ask
  // about the same mesh over and over while a command walks it, and a copy
  // between two meshes alternates between them.
  mutable const ArtObject* lastFound_[2] = {nullptr, nullptr};
  // contains() past the two remembered arts: looks art up and remembers it.
  bool find(const ArtObject* art) const;
};

}  // namespace lb::host
