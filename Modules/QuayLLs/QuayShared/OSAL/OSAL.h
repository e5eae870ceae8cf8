// What this system asks of the operating system. No other folder makes system calls; each subject has a header of its
// own, for those who need only that one.
#pragma once

#include "OSAL/CFile.h"
#include "OSAL/Crash.h"
#include "OSAL/Errors.h"
#include "OSAL/Files.h"
#include "OSAL/Libraries.h"
#include "OSAL/Locks.h"
#include "OSAL/Machine.h"
#include "OSAL/Memory.h"
#include "OSAL/Outcome.h"
#include "OSAL/Paths.h"
#include "OSAL/Pipes.h"
#include "OSAL/Process.h"
#include "OSAL/SequentialFile.h"
#include "OSAL/Serial.h"
#include "OSAL/Sockets.h"
#include "OSAL/Threads.h"
#include "OSAL/Time.h"
#include "OSAL/WholeFile.h"
