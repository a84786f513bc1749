// What is looked for in a report and is not there must not pass for anything.

#include <gtest/gtest.h>

#include "support/json_document.h"

TEST(JsonDocument, WhatIsNotThereFailsEveryCheck) {
  const Json report = Json::parse(R"({"count": 3, "none": null, "list": [1, 2.5]})");
  EXPECT_EQ(report["count"], 3.0);
  EXPECT_EQ(report["none"], nullptr);
  EXPECT_NE(report["count"], "3");
  EXPECT_EQ(report.at_path("/list/1"), 2.5);
  EXPECT_THROW(report["missing"], std::exception);
  EXPECT_THROW(report["list"][2], std::exception);
  EXPECT_THROW(report["count"].size(), std::exception);
  EXPECT_THROW(report["none"].elements(), std::exception);
  EXPECT_THROW(report["count"].get<std::string>(), std::exception);
  for (const char* text : {"", "half a {", "{} {}"}) {
    const Json unreadable = Json::parse(text);
    EXPECT_FALSE(unreadable == unreadable || unreadable != report || unreadable == nullptr || unreadable < 1 || unreadable >= 1) << text;
    EXPECT_THROW(unreadable["count"], std::exception);
    EXPECT_THROW(unreadable.size(), std::exception);
  }
}
