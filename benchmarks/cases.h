#pragma once

#include <string>

// Each registers its cases, named SUBJECT/.../CONTENDER; ours is "driver".
void AddNotifications();
void AddLists();
void AddCovers(const std::string& photograph);
void AddLife();
