// Only carries the precompiled headers of the test programs.
