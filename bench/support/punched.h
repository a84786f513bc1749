#pragma once

#include <memory>

#include "mesh/tri_block.h"
#include "support/model.h"

constexpr int hole_rim = 8;

/// How many holes a model gets: a thousand, and a hundred where there is no room for them.
int holes_in(const Model& model);

/// The merged model with that many holes of eight edges, spread over it and no two touching; edges built, element lists filled.
std::unique_ptr<trTriBlock> punched_block(const Model& model);
