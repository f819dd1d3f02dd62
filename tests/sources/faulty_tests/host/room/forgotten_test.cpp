// A deliberate fault of the check of tests, or its sound neighbour.
TEST(Tested, Holds) {}
