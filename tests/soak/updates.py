"""Updates by the model of the differential tests."""

import os
import shutil
import sys

sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), "../differential"))

from model import Update


def update_copy(description, data, copy, calls=None):
    """Lets the model do what the rules want to be done with the databases of a data folder, in a
    copy of it. Returns the update and the product's databases in the copy, by name. `calls` makes
    the list of the update's calls."""
    shutil.copytree(data, copy)
    files = description.product_in(copy)
    update = Update(copy, description.language, files)
    if calls:
        update.calls = calls(update)
    update.run()
    update.close()
    return update, files
