#include "PluginZel.h"

PluginZel::PluginZel() = default;
PluginZel::~PluginZel() = default;

void PluginZel::ProcessFrame() {}
void PluginZel::ProcessFrameOGL(int, int, double, double, double, double) {}
void PluginZel::SyncControls() {}
void PluginZel::Load(FILE*, long) {}
void PluginZel::Save(FILE*) {}
void PluginZel::LoadPrivate() {}
void PluginZel::SavePrivate() {}
void PluginZel::Reset(int) {}
void PluginZel::FrameChange(double) {}

int lib_abort_render(void*) { return 0; }
