// Document files.
