"""A template engine that packages generated C text into files, section by section."""
