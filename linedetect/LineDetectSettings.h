// The line detector's settings. lineSettingsFor() scales the lengths and
// blurs with the frame: `scale` is the frame's diagonal over a 2K frame's
// (1920x1080, 2203 px), so a 640-wide frame asks for shorter pieces than a
// 4K one. Lengths and distances are in pixels; gradients in value per pixel
// on fractions of full (see ZelCanny.h).
#pragma once

struct LineDetectSettings {
    double scale = 1.0;
    // Canny: pre-blur sigma; the thresholds are the larger of the floors and
    // the multiples of the frame's gradient noise (estimated from the median
    // gradient magnitude), so grain raises them.
    float cannySigma = 1.2f;
    float highFloor = 0.02f;
    float lowFloor = 0.008f;
    float highNoiseMultiple = 7.0f;
    float lowNoiseMultiple = 3.0f;
    // Pieces: a chain is split where a quadratic no longer follows it within
    // splitTolerance; pieces shorter than minPieceLength are dropped.
    double splitTolerance = 0.8;
    double minPieceLength = 30.0;
    // A line (pieces merged) must cover at least this length.
    double minLineLength = 90.0;
    // Sharper than any plausible lens makes a straight line: radius of
    // curvature below this many half-diagonals.
    double minRadiusInHalfDiagonals = 0.6;
    // Straightened with the model, a piece within pieceAgreement (RMS) of a
    // straight line agrees with it, and a line within lineTolerance is kept.
    double pieceAgreement = 0.7;
    double lineTolerance = 0.9;
    // A line closer than lineTolerance but further than bendTolerance is an
    // outlier still when it is clearly bent rather than noisy.
    double bendTolerance = 0.15;
    // Merging: pieces whose straightened lines lie within mergeDistance of
    // each other (at their ends) and at most maxGapInDiagonals apart.
    double mergeDistance = 1.0;
    double maxGapInDiagonals = 0.15;
    // Edges softer than this blur sigma are refused as out of focus.
    double maxBlur = 3.5;
    // Textured: more than this share of the pixels beside a line are edges.
    double maxEdgeShare = 0.2;
    double textureBand = 8.0;
    // Clustered: parallel lines closer than this, three or more together.
    double clusterDistance = 12.0;
    // Too little to fit: the lines kept cover less than this many diagonals
    // of the frame in all (a few short twigs in foliage).
    double minTotalInDiagonals = 0.5;
    // Output: one point per sampleStep of edge, at most maxPoints in all.
    double sampleStep = 20.0;
    long maxPoints = 2400;
};

// Settings for a frame of this size.
LineDetectSettings lineSettingsFor(int width, int height);
