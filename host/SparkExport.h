// Marks a name the host looks up in the loaded plug-in (entry points and
// control records). Everything else in the module stays hidden; the export
// list (host/exports.txt.in, the control records filled in from the control
// list) must name the same symbols.
#pragma once

#define SPARK_EXPORT __attribute__((visibility("default")))
