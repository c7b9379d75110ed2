// sparkrun's usage text, printed by --help.
#include "CommandLine.h"

namespace {
const char kUsage[] = R"(usage: sparkrun [options] INPUT OUTPUT
       sparkrun [options] --list-controls
       sparkrun [options] --save-setup FILE          (no images: just save the controls)
       sparkrun --make-chart OUTPUT [--size WxH]
       sparkrun --side-by-side LEFT RIGHT OUTPUT
       sparkrun --compare A B [--margin PERCENT]
       sparkrun --trace-chart IMAGE LINES.json
       sparkrun [options] --stmap MAP.exr (--size WxH | INPUT) [--overscan PERCENT]
       sparkrun [options] --to-opencv FILE | --to-lensfun FILE --focal MM [--crop C]
                (--size WxH | INPUT)
       sparkrun --detect-lines LINES.json INPUT [--detect-frames LIST]

Runs a Spark plug-in (by default straightlux.spark next to this tool) on image
files through the simulated host. INPUT and OUTPUT are any files OpenImageIO
reads and writes; a sequence is a name with a run of # (shot.####.dpx, the
count is the zero padding) or %d / %04d. A single INPUT with a sequence OUTPUT
renders the still for every frame.

options:
  --plugin PATH          the plug-in to run
  --depth 8|12           host frame depth (default: 12 for inputs deeper than 8 bits)
  --frames A-B           frame numbers (default: the sequence files found, or 1)
  --set NAME=VALUE       set a control by its title: --set Radial1=-0.08
                         --set "Centre X=52" --set Sampling=Cubic --set Proxy=1/2
                         --set "Auto Preview=off"
  --key NAME@FRAME=VALUE animation key of a number field: --key Radial1@10=-0.05
  --setup FILE           load a saved set-up (--set and --key win over it)
  --save-setup FILE      save every control value and key at the end
  --list-controls        print every control with its value and range or entries
  --lines FILE           draw these lines in the plug-in's viewer on the first
                         frame, as a user draws them (LineEdit "Add Line", one
                         click per point): JSON {"lines": [[[x, y], ...], ...]},
                         image pixels, x right, y down from the top-left pixel
                         centre, two points or more a line; at most 1000 lines
                         and 10000 points
  --lines auto           find the straight lines in the input (as --detect-lines)
                         and draw those; with --autofind: detect, draw and fit
  --detect-frames LIST   frames searched for lines, pooled: 1001,1050,1090-1100
                         (default: up to 5 spread over the run's frames)
  --autofind             press AutoFind after the lines are drawn; prints the
                         fitted Radial1 and Radial2, which the frames written
                         use and --save-setup keeps
  --overlay FILE         write the first input frame with the plug-in's overlay
                         drawn on it (lines, handles, centre, fitted points)
  --threads N            processors the host offers the plug-in
  --float-encoding linear|log
                         how float (scene-linear) inputs enter the 12-bit host:
                         linear clips to 0..1 (and says how many pixels it
                         clipped); log carries 0..64 on a log curve and undoes it
                         on output (float input and float output such as .exr,
                         12-bit host; within 0.1% of value + 1/64)
  --max-memory SIZE      memory a frame may need (512M, 8G, ...); default: what
                         the machine has free. A larger frame is refused (exit 3)
  --progress, --no-progress
                         show (or not) a progress line with frames per second
                         and the time left (default: when stderr is a terminal)
  --sequential           read, process and write one frame after another instead
                         of reading ahead and writing behind (same files, slower)
  --verbose              report each frame, its animated values and the peak memory
  --quiet                drop the plug-in's console output and messages (a crash
                         or a sanitizer report still shows)
  --help

lens data:
  --stmap MAP.exr        write the set-up's ST-map, as compositors read it: 32-bit
                         float EXR, R = s, G = t, origin at the bottom left;
                         Mode Remove gives the undistort map, Mode Add the
                         redistort map; a MAP pattern with --frames writes one
                         map per frame (animation keys followed)
  --overscan PERCENT     extend the map's canvas by PERCENT (0 to 100) of the
                         frame on each side, the model continuing outside
  --from-opencv FILE     set the lens controls from an OpenCV calibration
                         (FileStorage YAML, XML or JSON), printing the residual
  --from-lensfun MAKER MODEL LENS FOCAL
                         set them from the lensfun database's profile (needs
                         INPUT or --size)
  --correct-in add|remove
                         the mode that corrects the plate with such a lens: add
                         (the default) takes it over exactly, remove fits it
  --to-opencv FILE       write the set-up as an OpenCV calibration
  --to-lensfun FILE      write the set-up as a lensfun database entry (poly5)
  --focal MM, --crop C   the lens's focal length and the camera's crop factor
                         (default 1, 36 mm film) for --to-opencv and --to-lensfun

utilities:
  --make-chart OUTPUT    the test chart (--size WxH, default 960x540)
  --side-by-side L R OUT two pictures side by side
  --compare A B          mean absolute difference over the interior (--margin)
  --trace-chart IMAGE LINES.json
                         find the test chart's outer grid lines in IMAGE (as
                         distorted or not) and write them as a lines file
  --detect-lines LINES.json INPUT
                         find the lines of INPUT that should be straight (long
                         sharp edges; distorted ones too) and write them as a
                         lines file for --lines; --verbose lists the lines
                         rejected (outliers, too curved, blurred, textured,
                         clustered)

exit codes: 0 done; 2 usage (bad option, control name or value; an output
that is also an input or another output; a sequence mixing floating-point and
whole-number frames; a lines file that is not valid JSON or has the wrong
shape, a line of fewer than two points, a point outside the frame; AutoFind
without lines, or with no line of three points or more, or on lines that do
not constrain its fit (it would leave a control's range)); 3 input (missing,
unreadable, damaged or cut-off image, set-up or lines file, a lines file that
is a pipe or a device, a frame too large or needing more memory than allowed,
no chart grid found by --trace-chart, no usable line found by --detect-lines
or --lines auto; a calibration or lensfun profile that is missing,
incomplete, not finite, of another frame shape or outside the controls'
ranges); 4 output (missing folder, name too long, unsupported format, an
output name that is a device or a pipe, write failure such as a full disk,
--overlay without OpenGL off-screen drawing (libOSMesa) or of a frame above
16384 pixels a side); 5 plug-in (not a plug-in,
declined to start, lacks the viewer entry points or controls --lines,
--autofind or --overlay need); 6 processing (no frame returned); 7 out of
memory while working, in the tool or in the plug-in; 8 internal error; 129,
130, 143 stopped by SIGHUP,
SIGINT, SIGTERM (the file being written is removed); a crash prints a line
and ends by its signal (128 + N, e.g. 139)
)";
}  // namespace

const char* usageText() { return kUsage; }
