// Exists only to build the precompiled headers of all tests.
