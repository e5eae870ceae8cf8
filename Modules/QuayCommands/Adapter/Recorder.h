// One capture through the radio's own operations, in the steps that its generation of chips wants.
#pragma once

#include "OSAL/Outcome.h"
#include "QuayCommands.h"
#include "RadioSetup.h"

namespace quayCommand {

/// See RecordCapture.
/// @param lastCapture  where the radio behind `wifi` keeps what its last read gave
OSAL::Outcome<Recording> RecordFrom(IWifiCommands& wifi, const OSAL::Outcome<CaptureFacts>& lastCapture,
                                    const RecordRequest& request);

}  // namespace quayCommand
