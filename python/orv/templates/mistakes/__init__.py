"""What is said of the mistakes of templates, when they run and before."""
