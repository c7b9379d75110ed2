// LensDataRun: lens data in and out through a session's controls.
//
//   --from-opencv FILE, --from-lensfun MAKER MODEL LENS FOCAL: another
//       program's lens, converted into the controls after the set-up is
//       loaded and before --set and --key, with the residual printed in
//       pixels. The plug-in's polynomial runs the other way round from
//       OpenCV's and lensfun's, so a lens taken over exactly corrects the
//       plate in Mode Add (--correct-in add, the default) and Mode Remove
//       then re-distorts; --correct-in remove fits the inverse instead.
//   --stmap OUT.exr: the ST-map of the set-up for each frame (lensdata/StMap.h).
//   --to-opencv FILE, --to-lensfun FILE: the set-up's correcting map written
//       as an OpenCV calibration or a lensfun database entry.
// The frame's size comes from --size or the first INPUT picture; the
// controls are found by their names in the plug-in's records.
#pragma once

#include <string>

#include "RunOptions.h"
#include "RunStatus.h"
#include "SparkSession.h"

// The --from-* lens into the started session's controls, for a frame of
// width x height (0 x 0: an OpenCV calibration's own size). Nothing without one.
RunStatus applyLensSource(const RunOptions& options, SparkSession& session, int width, int height);

RunStatus runStMap(const RunOptions& options, const std::string& pluginPath);
RunStatus runExportLens(const RunOptions& options, const std::string& pluginPath);
