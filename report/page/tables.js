/**
 * A table that can be sorted by each column. A column has `title`, `width` (rem), `cell(row, control)`
 * and `key(row)`, and may have `group`, the heading over neighbouring columns, and `style`. A row may
 * have `children`, rows that it shows once it is opened; `control` is the button that does it. Returns
 * the element and the function that shows those rows that a predicate allows.
 */
function dataTable(caption, columns, rows) {
  const body = make('tbody');
  const fill = filler(body);
  const entries = rows.map(row => ({row, shown: true, open: false}));
  const heads = columns.map(column => make('th', {scope: 'col', class: column.style},
    make('button', {type: 'button', click: event => sort(event.currentTarget.parentNode, column)}, column.title)));
  let allow = () => true;

  function control(entry) {
    const count = list(entry.row.children).length;
    const bad = list(entry.row.children).filter(row => row.item.bad).length;
    if (!count) return null;
    return entry.control = make('button', {type: 'button', class: 'open', 'aria-expanded': 'false', click: () => {
      entry.open = !entry.open;
      draw();
    }}, make('span', {'aria-hidden': 'true'}, '▸'), ` ${count} in it`, bad ? make('strong', null, `, ${bad} bad`) : null);
  }
  const toElement = (row, style, button) => make('tr', {class: style}, columns.map((column, at) => at
    ? make('td', {class: column.style}, column.cell(row)) : make('th', {scope: 'row', class: column.style}, column.cell(row, button))));
  const element = entry => entry.element ??= entry.parent ? toElement(entry.row, 'child', null) : toElement(entry.row, null, control(entry));

  /** What is in a row stands below it: all of it, or what a filter finds where it doesn't find the row itself. */
  function withChildren(entry) {
    if (!entry.row.children) return [entry];
    entry.children ??= entry.row.children.map(row => ({row, parent: entry}));
    const open = entry.open || !allow(entry.row);
    element(entry);
    if (entry.control) entry.control.setAttribute('aria-expanded', open);
    return open ? [entry, ...entry.children.filter(child => allow(entry.row) || allow(child.row))] : [entry];
  }
  const draw = () => fill(entries.filter(entry => entry.shown).flatMap(withChildren), element);

  function sort(head, column) {
    const descending = head.getAttribute('aria-sort') === 'ascending';
    for (const other of heads) other.removeAttribute('aria-sort');
    head.setAttribute('aria-sort', descending ? 'descending' : 'ascending');
    entries.sort((a, b) => byKey(column.key(a.row), column.key(b.row), descending));
    draw();
  }

  function show(allowed) {
    allow = row => allowed(row);
    for (const entry of entries) entry.shown = allow(entry.row) || list(entry.row.children).some(allow);
    draw();
  }

  const title = make('caption', {id: `caption-${++dataTable.count}`}, caption);
  const [style, widths] = columnWidths(columns);
  const table = make('table', {style}, title, widths, make('thead', null, groupHeads(columns), make('tr', null, heads)), body);
  return {element: make('div', {class: 'scroll', tabindex: '0', role: 'region', 'aria-labelledby': title.id}, table), show, rows};
}

dataTable.count = 0;

function columnWidths(columns) {
  const others = columns.slice(1).reduce((sum, column) => sum + column.width, 0);
  return [`--first: ${columns[0].width}rem; --others: ${others}rem`,
          make('colgroup', null, columns.map((column, at) => make('col', at ? {style: `width: ${column.width}rem`} : null)))];
}

/** Unknown values come last in both directions. */
function byKey(a, b, descending) {
  if (a === null || b === null) return (a === null) - (b === null);
  const order = typeof a === 'number' ? a - b : collator.compare(a, b);
  return descending ? -order : order;
}

function groupHeads(columns) {
  const groups = [];
  for (const {group = ''} of columns) {
    if (groups.length && groups.at(-1).group === group) ++groups.at(-1).span;
    else groups.push({group, span: 1});
  }
  return groups.length < 2 ? null : make('tr', null, groups.map(({group, span}) => group
    ? make('th', {scope: 'colgroup', colspan: span, class: 'start'}, visible(group)) : make('td', {colspan: span})));
}

