#pragma once

#include <Carbon/AppleEvents.h>
#include <Carbon/CoreGraphics.h>
#include <Carbon/GlobalNames.h>
#include <Carbon/Processes.h>

#include <CoreFoundation/CoreFoundation.h>
#include <MacTypes.h>
