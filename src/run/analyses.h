// The analyses that this build contains, put into the dispatches that call
// them. Each analysis module offers an install function; the run installs
// them all before it analyses anything. Installing twice does no harm.
#pragma once

void install_analyses();
