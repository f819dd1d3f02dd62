// A deliberate fault of the check of tests, or its sound neighbour.
