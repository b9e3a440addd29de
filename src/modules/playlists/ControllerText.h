#pragma once

#include "TrString.h"

// A sentence for people in the current language; the context is the function that shows it.
#define CONTROLLER_TEXT(text) Language::ntr(trExtractContext(__PRETTY_FUNCTION__), text)
