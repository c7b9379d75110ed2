// The entry points the host calls by name (C linkage). The information record
// comes by value; its setup file name, frame numbers, frame size and depth
// and processor count are what the plug-in reads.
#pragma once

#include "SparkApi.h"
#include "SparkExport.h"

extern "C" {
// Start-up; returns the module level (2).
SPARK_EXPORT unsigned int SparkInitialise(SparkInfoStruct info);
// Saves the set-up under the record's setup file name.
SPARK_EXPORT void SparkUnInitialise(SparkInfoStruct info);
SPARK_EXPORT int SparkProcessStart(SparkInfoStruct info);  // always 1
// Renders one frame; the output pixel buffer, or null when refused or failed.
SPARK_EXPORT unsigned long* SparkProcess(SparkInfoStruct info);
SPARK_EXPORT void SparkMemoryTempBuffers(void);  // the plug-in wants no temporary buffers
SPARK_EXPORT int SparkClips(void);               // one input clip
// Lays out the host's channel editor.
SPARK_EXPORT void SparkChannelEditor(void);
// Re-applies the names of the animatable channels.
SPARK_EXPORT void RenameChannelEditorEntries(void);
}
