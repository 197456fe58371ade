// The tables of the page of the aircraft: what each add-on serves, by which names, and how sure these are.
#pragma once
#include <string>

// Begins the part of docs/aircraft.md that is written here.
constexpr char aircraftMark[] =
    "<!-- Below here written by offset_reference from the catalogue; do not edit. -->\n";

// That part, the mark included.
std::string MakeAircraftPart();
