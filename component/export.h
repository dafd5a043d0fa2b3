#pragma once

/* Marks what the shared library shows; everything else in it is hidden. Also read by C. */
#define SELFREPORT_EXPORT __attribute__((visibility("default")))
