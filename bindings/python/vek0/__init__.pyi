from ._bulk import Arcs as Arcs, Circles as Circles, Inserts as Inserts, Lines as Lines
from ._bulk import Points as Points, Polylines as Polylines, Texts as Texts
from ._core import Entity as Entity, Space as Space
from ._core.tables import Layer as Layer, Linetype as Linetype, Style as Style
from ._drawing import Diff as Diff, Drawing as Drawing, new as new, open as open
from ._errors import Error as Error, LossWarning as LossWarning
from ._errors import UnknownNameError as UnknownNameError

__version__: str
