// The view that a drawing was saved with.
