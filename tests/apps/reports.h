#pragma once

#include <gtest/gtest.h>

#include "apps/process.h"
#include "apps/test_files.h"
#include "support/json_document.h"
#include "support/shapes.h"

using Arguments = std::vector<std::string>;

/// Runs `mendex` with these arguments and --json, which must end with that code (-1: any), and reads what it prints.
Json report_of(Arguments arguments, int exit_code = 0);

Json info(const std::string& path);

/// What `mendex check` says, whatever its code.
Json check(const std::string& path, Arguments options = {});

/// The count in the entry of "done" that tells of this; -1 without one.
int count_of(const Json& report, const std::string& what);

void expect_text(const std::string& text, const std::string& part);

/// Runs `mendex` with these and more arguments, which must end with that code and a text among its errors.
void expect_refused(Arguments arguments, const Arguments& more, int exit_code, const std::string& text = "");

void turn_over(FacetCorners& facet);

std::vector<FacetCorners> facets_of(const Shape& shape);

/// A binary STL file of all of them.
std::string stl_of(const TestFolder& folder, const std::string& name, const std::vector<Shape>& shapes);
