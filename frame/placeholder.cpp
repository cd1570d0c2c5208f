// Plug-in frame.
