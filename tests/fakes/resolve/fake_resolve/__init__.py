"""What stands behind the stand-in DaVinciResolveScript, whose docstring describes it."""
