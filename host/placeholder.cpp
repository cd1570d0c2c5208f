// Host placeholder until the document model lands.
