// A plug-in that needs a symbol which nobody has.

extern "C" void NobodyHasThis();

extern "C" void GetCreationFunc() { NobodyHasThis(); }
