#pragma once

/// @file
/// Every public header of the library.

#include <pylon/export.h>
#include <pylon/log/arg.h>
#include <pylon/log/logclient.h>
#include <pylon/log/logconsole.h>
#include <pylon/log/logcustom.h>
#include <pylon/log/logdevice.h>
#include <pylon/log/logfilter.h>
#include <pylon/log/logfilteritem.h>
#include <pylon/log/logitem.h>
#include <pylon/log/loglevel.h>
#include <pylon/log/logmacros.h>
#include <pylon/log/logmanager.h>
#include <pylon/log/logmodule.h>
#include <pylon/media/byteconversion.h>
#include <pylon/media/image.h>
#include <pylon/media/imagebase.h>
#include <pylon/media/imageheader.h>
#include <pylon/media/imageheaderbase.h>
#include <pylon/media/lyraimageheaderparser.h>
#include <pylon/media/lyraimageheaderparserv4.h>
#include <pylon/platform/osal.h>
#include <pylon/platform/synchronousprocess.h>
#include <pylon/time/elapsedtimer.h>
#include <pylon/time/nanoelapsedtimer.h>
#include <pylon/time/renderingtimings.h>
#include <pylon/time/timeconversion.h>
#include <pylon/time/timer.h>
#include <pylon/time/timestamp.h>
#include <pylon/time/timezone.h>
#include <pylon/time/timezoneabbrevation.h>
#include <pylon/time/timezones.h>
#include <pylon/time/timingswitches.h>
