#pragma once

#include "Engine.h"

/// How the child ended, in a sentence.
QString endText(const EngineEnd &end);
