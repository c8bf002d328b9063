#pragma once

#include "Draw.h"

/// Fills in the values that the step carries: mostly sane ones that requests and confirmations share, and
/// every now and then one that nobody should send.
void drawValues(Step &step, const Model::World &world, const Draw &draw);
