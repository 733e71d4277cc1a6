#pragma once

// Debian's headers of VST3 in C, in an order that suits them: some lean on others that they don't
// include.
#include <travesty/factory.h>
// clang-format off
#include <travesty/bstream.h>
#include <travesty/component.h>
#include <travesty/message.h>
#include <travesty/host.h>
#include <travesty/audio_processor.h>
#include <travesty/edit_controller.h>
// clang-format on
