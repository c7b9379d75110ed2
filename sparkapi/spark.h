/*
 * The host's Spark plug-in interface (version 4.x), as this project declares it.
 *
 * Records the host passes by value, the control records a plug-in exports, and
 * the host functions a plug-in imports. Member and type names are the host's own,
 * so the same code builds against the host's header when SPARK_SDK_DIR points at it.
 * Platform: 64-bit Linux, little-endian (long and pointers 8 bytes).
 */
#ifndef SPARK_H
#define SPARK_H

#include <stdio.h> /* FILENAME_MAX */

#ifdef __cplusplus
extern "C" {
#endif

/* Frame information, passed by value to entry points and callbacks. */
typedef struct {
    char Name[FILENAME_MAX];        /* setup file name */
    int FrameBufferX, FrameBufferY; /* frame origin in the viewer, screen units */
    int TotalBuffers;
    int TotalClips;
    int FramePixels; /* width x height */
    int FrameBytes;  /* bytes of one frame buffer */
    char Mode;       /* 0 desktop, 1 module */
    unsigned int FrameNo;
    unsigned int TotalFrameNo;
    int FrameWidth, FrameHeight;
    int FrameDepth; /* bits per pixel: 24 = 8-bit RGB, 48 = 12-bit RGB */
    unsigned long **Buffers;
    char NumProcessors;
    char Context; /* non-zero while the host shows this plug-in's controls and viewer */
    unsigned long RenderQuality;
    unsigned long Reserved[11];
} SparkInfoStruct;

/* Buffer state flags of SparkMemBufStruct.BufState. */
#define MEMBUF_UNREGISTERED (1 << 0)
#define MEMBUF_REGISTERED (1 << 1)
#define MEMBUF_LOCKED (1 << 2)
#define MEMBUF_CLEAN (1 << 3)
#define MEMBUF_DIRTY (1 << 4)
#define MEMBUF_INVALID (1 << 5)

typedef enum {
    SPARKBUF_RGB_24_3x8 = 0,
    SPARKBUF_RGB_48_3x12 = 1,
    SPARKBUF_FMT_OTHER = 2
} SparkBufferFormat;

/* Filled by sparkMemGetBuffer. */
typedef struct {
    int TotalBuffers;
    unsigned long *Buffer; /* the pixel buffer */
    int BufState;
    int BufSize;
    SparkBufferFormat BufFmt;
    int BufWidth, BufHeight, BufDepth, Stride, Inc;
    unsigned long Reserved[10];
} SparkMemBufStruct;

/* Filled by sparkGraphSetup. */
typedef struct {
    float PixelAspectRatio;
    long GraphicsMaxX, GraphicsMaxY;
    unsigned long Reserved[12];
} SparkGraphInfoStruct;

/* Every control callback. Argument: 0 drag, 1 end of change, 2 none, 3 drag end. */
typedef unsigned long *(*SparkCallbackFunc)(int CallbackArg, SparkInfoStruct SparkInfo);

#define SPARK_MAX_PUP_TITLES 20

typedef struct {
    float Value, Min, Max, Increment;
    unsigned int Flags;
    char *Title; /* printf format with one float */
    SparkCallbackFunc Callback;
} SparkFloatStruct;

typedef struct {
    int Value, Min, Max, Increment;
    unsigned int Flags;
    char *Title;
    SparkCallbackFunc Callback;
} SparkIntStruct;

typedef struct {
    int Value; /* 0-based */
    int TitleCount;
    SparkCallbackFunc Callback;
    char *Titles[SPARK_MAX_PUP_TITLES];
} SparkPupStruct;

typedef struct {
    char Value;
    char *Title;
    SparkCallbackFunc Callback;
} SparkBooleanStruct;

typedef struct {
    char *Title;
    SparkCallbackFunc Callback;
} SparkPushStruct;

typedef struct {
    char Value[200];
    char *Title;
    unsigned int Flags;
    SparkCallbackFunc Callback;
} SparkStringStruct;

typedef struct {
    unsigned long Color;
    SparkCallbackFunc Callback;
} SparkColorStruct;

/* A user float channel: the float record followed by one int, 0. */
typedef struct {
    float Value, Min, Max, Increment;
    unsigned int Flags;
    char *Title;
    SparkCallbackFunc Callback;
    int Reserved;
} SparkUserFloatStruct;

/* Control-type argument of the channel calls. */
#define SPARK_CE_CONTROL 0 /* channel-editor-only control */
#define SPARK_UI_CONTROL 1 /* control on the plug-in's pages */

/* Clip selector of sparkClipControlTitle. */
#define SPARK_FRONT_CLIP 0
#define SPARK_BACK_CLIP 1
#define SPARK_MATTE_CLIP 2
#define SPARK_AUX_CLIP 3

/* Levels returned by SparkInitialise. */
#define SPARK_DESKTOP 1
#define SPARK_MODULE 2

/* Messages. */
void sparkError(char *);
void sparkMessage(char *);
int sparkMessageConfirm(char *); /* non-zero: confirmed */

/* Set-ups. */
void sparkLoadSetup(char *);
void sparkSaveSetup(char *);

/* Titles and channels. */
void sparkControlTitle(int page, char *);
void sparkClipControlTitle(int clip, char *);
int sparkSetControlName(int type, int controlNo, char *);
void sparkControlUpdate(int controlNo);
void sparkEnableParameter(int type, int controlNo);
void sparkDisableParameter(int type, int controlNo);
float sparkGetCurveValuef(int type, int controlNo, float frame);
void sparkSetCurveKey(int type, int controlNo, int frame, float value);
void sparkCeAddFolder(int level, char *);
void sparkCeAddControl(int level, int type, int controlNo);

/* Buffers and frames. Buffer id 1 is the output frame, 2 the first input clip. */
int sparkMemGetFreeMemory(void);
int sparkMemGetBuffer(int id, SparkMemBufStruct *); /* non-zero on success */
void sparkGetFrame(int clip, int frame, unsigned long *destination);

/* Multi-processing: fn runs once per processor with the given pointer arguments. */
void sparkMpFork(void (*fn)(), int argCount, ...);
void sparkMpInfo(unsigned long *offset, unsigned long *length);

/* Viewer. */
void sparkGraphSetup(SparkGraphInfoStruct *);
float sparkGetViewerRatio(void);
void sparkViewingCursor(int);
void sparkViewingDraw(void);
void sparkCursorBusy(void);

/* Files. */
void sparkFileBrowserDisplay(char *path, char *extension, void (*callback)(char *path));
void sparkWorkingDir(char *dir); /* fills FILENAME_MAX bytes */

/* Other. */
float sparkAPIVersionInfo(void);
const char *sparkProgramGetName(void);

#ifdef __cplusplus
}
#endif

#endif /* SPARK_H */
