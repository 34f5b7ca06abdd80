// Owns the precompiled headers of the tests.
