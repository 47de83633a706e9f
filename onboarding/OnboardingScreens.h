// All screens of the first run.
#pragma once

#include "onboarding/AccessibilityBeat.h"
#include "onboarding/DemoBeat.h"
#include "onboarding/HowItWorksBeat.h"
#include "onboarding/KeepsBeat.h"
#include "onboarding/MessageBeats.h"
#include "onboarding/MirrorBeat.h"
#include "onboarding/QuestionBeat.h"
#include "onboarding/ScheduleBeat.h"
#include "onboarding/ScienceBeat.h"
#include "onboarding/WheelQuestionBeat.h"
