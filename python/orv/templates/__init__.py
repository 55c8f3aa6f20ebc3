"""Jinja2 templates with the packaging tags."""
