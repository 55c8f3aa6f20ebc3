"""The report of a run: a page that shows its files and where each of their lines comes from."""
