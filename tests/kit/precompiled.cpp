// Nothing: a target of CMake that precompiles headers needs one source file.
