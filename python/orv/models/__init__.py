"""Models: the data that templates walk, from files and from the command line."""
