// The prompt machine: where answers come from, what is refused and asked again.
