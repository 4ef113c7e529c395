// Only here so that a target that is a precompiled header has something to compile.
