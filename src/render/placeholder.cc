// Direct GL renderer: filled in by its own change.
