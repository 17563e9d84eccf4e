"""What the tests in Python share."""
