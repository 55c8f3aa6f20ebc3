"""What keeps templates from changing the model, from leaving it, and from never ending."""
