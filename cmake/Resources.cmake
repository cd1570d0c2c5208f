# Builds the plug-in's resource table from the files in resources/.
# (Filled in by the resource embedding step.)
set(LB_RESOURCE_SOURCES "")
