// A library that does nothing: what tests load, unload, and put into bundles.
extern "C" int plainLibraryNumber() { return 7; }
