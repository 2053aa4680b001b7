// Picking one entity.
