#pragma once

#include "MeasuredDevice.h"
#include "Operation.h"

#include <vector>

/// All that is measured.
std::vector<Subject> allSubjects();

/// The parts of it that have files of their own.
void addForeignThread(std::vector<Subject> &subjects);
void addLoading(std::vector<Subject> &subjects);
void addRegistry(std::vector<Subject> &subjects);

QString variantName(Variant variant);
