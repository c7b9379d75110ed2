// The line pen: pointer events to edits of the plug-in's polylines.
#include "StraightluxLinePenOverlayZel.h"

#include "OverlayZel.h"
#include "PolyLineSet2DZel.h"
#include "StraightluxInfo.h"
#include "StraightluxOverlay.h"

void StraightluxLinePenOverlayZel::HandleInteraction(InterType type, float x, float y) {
    if (!owner || !surface || surface->frameWidth <= 0 || surface->frameHeight <= 0) return;
    StraightluxOverlayParts& plugin = *owner;
    (void)surface->GrabHandleSize();

    // Every event, a move too, follows the pointer.
    penX = x / static_cast<float>(surface->frameWidth);
    penY = y / static_cast<float>(surface->frameHeight);
    plugin.penX = penX;
    plugin.penY = penY;
    const tagDPT2 pen = {penX, penY};
    const int32_t edit = plugin.lastLineEdit;
    PolyLine2DZel*& line = plugin.currentLine;

    switch (type) {
        case INTER_MOVE:
            HandleInteractionPlat(type, x, y);
            return;
        case INTER_PRESS:
            armed = 0;
            pressed = 1;
            if (edit == kLineEditAddLine) armed = 1;
            if (edit >= kLineEditDeleteLine && edit <= kLineEditInsertPoint && plugin.lines) {
                line = plugin.lines->pick_line(pen, kPickTolerance);
                if (line) {
                    armed = line->pick_point(pen, kPickTolerance) != PolyLine2DZel::kNoPoint;
                    if (edit == kLineEditInsertPoint) line->insert_point(line->picked);
                }
            }
            break;
        case INTER_DRAG:
            break;
        case INTER_RELEASE:
            if (armed) {
                switch (edit) {
                    case kLineEditAddLine:
                        if (plugin.newLine && plugin.lines) {
                            line = plugin.lines->new_line(PolyLine2DZel::kNoTag);
                            plugin.newLine = false;
                        }
                        if (line) line->add_point(pen);
                        break;
                    case kLineEditDeleteLine:
                        if (line && plugin.lines &&
                            line->pick_point(pen, kPickTolerance) != PolyLine2DZel::kNoPoint &&
                            plugin.lines->delete_line(line)) {
                            line = nullptr;
                        }
                        break;
                    case kLineEditMovePoint:
                        if (line) line->set_point(pen, PolyLine2DZel::kNoPoint);
                        break;
                    case kLineEditDeletePoint:
                        if (line &&
                            line->pick_point(pen, kPickTolerance) != PolyLine2DZel::kNoPoint) {
                            line->delete_point(PolyLine2DZel::kNoPoint);
                        }
                        break;
                    default:
                        break;
                }
            }
            HandleInteractionPlat(type, x, y);
            armed = 0;
            return;
        default:
            return;
    }

    // Press and drag: the picked point follows the pointer.
    if (armed && (edit == kLineEditMovePoint || edit == kLineEditInsertPoint) && line) {
        line->set_point(pen, PolyLine2DZel::kNoPoint);
    }
    HandleInteractionPlat(type, x, y);
}
