// Filter engine: filled in by its own change.
