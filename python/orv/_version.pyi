__version__: str
