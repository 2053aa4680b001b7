// Reading typed answers: pure functions from text to values.
