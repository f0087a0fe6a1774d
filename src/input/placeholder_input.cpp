// Placeholder so the library has a translation unit until its first module lands.
