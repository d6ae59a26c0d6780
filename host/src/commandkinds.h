#pragma once

#include "commandwords.h"
#include "vek0host/editing.h"

// The readers of the commands, see `CommandKind::read`.
namespace vek0::host {

EditStep readLineCommand(CommandWords& words);
EditStep readCircleCommand(CommandWords& words);
EditStep readArcCommand(CommandWords& words);
EditStep readPolylineCommand(CommandWords& words);
EditStep readRectangleCommand(CommandWords& words);
EditStep readPointCommand(CommandWords& words);
EditStep readTextCommand(CommandWords& words);
EditStep readInsertCommand(CommandWords& words);
EditStep readHatchCommand(CommandWords& words);

EditStep readMoveCommand(CommandWords& words);
EditStep readCopyCommand(CommandWords& words);
EditStep readRotateCommand(CommandWords& words);
EditStep readMirrorCommand(CommandWords& words);
EditStep readScaleCommand(CommandWords& words);
EditStep readStretchCommand(CommandWords& words);

EditStep readOffsetCommand(CommandWords& words);
EditStep readTrimCommand(CommandWords& words);
EditStep readExtendCommand(CommandWords& words);
EditStep readFilletCommand(CommandWords& words);
EditStep readChamferCommand(CommandWords& words);

EditStep readLayerCommand(CommandWords& words);
EditStep readColorCommand(CommandWords& words);
EditStep readLinetypeCommand(CommandWords& words);

EditStep readUndoCommand(CommandWords& words);
EditStep readRedoCommand(CommandWords& words);
EditStep readHelpCommand(CommandWords& words);

}  // namespace vek0::host
