// Rendering.
