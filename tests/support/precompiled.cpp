// Nothing but a place for the precompiled headers of all tests to be built.
