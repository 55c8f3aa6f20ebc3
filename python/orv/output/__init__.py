"""From the files of a run to the disk, and the reports beside them."""
