#pragma once
#include <exception>
#include <string>

namespace failures {

// What users are told of failures that do not come with a sentence of ours.

/// Why the system refused, as a Chinese clause without an end ("没有写权限"), by its error number. Numbers
/// that a user cannot do anything about are named as such; 0 is no reason and gives one too.
std::string reasonOfErrno(int error);

/// One Chinese sentence for whatever was thrown. Exceptions of our own have theirs, which comes back as it
/// is; those of the system and of libraries are put into words. A text of theirs stands behind ours at most.
std::string sentenceOf(const std::exception& error);

} // namespace failures
