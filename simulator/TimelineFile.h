#pragma once

class Timeline;
struct TimelineEntry;

/// Writes all that comes on the timeline from now on to a file of this process in the folder that the environment
/// variable KVX_TIMELINE_FOLDER names, in the JSON form of a timeline; tools/contract-coverage reads it. Without the
/// variable nothing is written. Ends the program with the reason when the file cannot be written.
void keepInTimelineFile(Timeline &timeline);

/// Writes an entry that is on no timeline to the same file.
void addToTimelineFile(const TimelineEntry &entry);
