"""Helpers that the Python tests share."""
