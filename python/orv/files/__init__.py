"""The files of a run: declared, filled and read back by templates."""
