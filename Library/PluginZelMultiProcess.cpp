// Banded work of the plug-in base class, through the framework's one banding
// function (the host's processors when the host offers a fork service).
#include "PluginZel.h"
#include "ZelBand.h"

void PluginZel::MultiProcess(RowWorker fn, long count) {
    zelForEachBand(count, [this, fn](long first, long last) { (this->*fn)(first, last); });
}

void PluginZel::execute_library_mp_func(long first, long last) {
    libraryFunction(libraryData, static_cast<int>(first), static_cast<int>(last));
}

void lib_mp_exec(void* plugin, void (*fn)(void* data, int first, int last), int count, void* data) {
    PluginZel* self = static_cast<PluginZel*>(plugin);
    self->libraryFunction = fn;
    self->libraryData = data;
    self->MultiProcess(&PluginZel::execute_library_mp_func, count);
}
