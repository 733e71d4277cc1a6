// Needs a function that nobody has.
extern "C" int FunctionThatNobodyHas();

extern "C" __attribute__((visibility("default"))) unsigned TarnexModuleVersion() {
    return static_cast<unsigned>(FunctionThatNobodyHas());
}
