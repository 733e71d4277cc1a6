// One report.

const SLOWEST = 12;

function pluginRows(plugins, exercises) {
  const rows = new Map(plugins.map(item => [item.name, {item, items: [item], children: []}]));
  for (const item of exercises) {
    const row = rows.get(item.plugin);
    if (row) row.children.push({item, items: [item]});
    else rows.set(item.name, {item, items: [item]});
  }
  const worst = row => Math.min(...[row, ...list(row.children)].map(({item}) => rank(item)));
  return [...rows.values()].sort((a, b) => worst(a) - worst(b));
}

/** A column is there if it has anything to say. */
function pluginTable(plugins, exercises) {
  const rows = pluginRows(plugins, exercises);
  const inChild = row => row.item.kind === 'exercise';
  const name = ({item}) => inChild({item}) ? item.title || item.name.slice(item.plugin.length + 1) || item.name : item.name;
  const columns = [
    {title: 'Plugin', width: 13, cell: (row, control) => [foreign(name(row)), control ? make('div', null, control) : null], key: row => row.item.name},
    {title: 'Verdict', width: 8.5, cell: row => verdictCell(row.item), key: row => rank(row.item)},
    {title: 'Interface', width: 6.5, cell: row => inChild(row) ? '' : visible(row.item.group), key: row => row.item.group},
    {title: 'Reason', width: 17, cell: row => foreign(clipped(row.item.reason, 160)), key: row => row.item.reason || null},
    {title: 'Package', width: 10, cell: row => foreign(row.item.package), key: row => row.item.package || null},
    {title: 'File', width: 15, cell: row => inChild(row) ? '' : foreign(row.item.path), key: row => row.item.path || null},
    {title: 'Time', width: 5.5, style: 'number', cell: row => duration(row.item.seconds), key: row => row.item.seconds},
  ];
  const says = column => !['Reason', 'Package', 'File'].includes(column.title) || rows.some(row => [row, ...list(row.children)].some(column.key));
  return dataTable(exercises.length ? 'Verdict of each module; open one to see what is in it' : 'Verdict of each module', columns.filter(says), rows);
}

function codecMatrix(items) {
  const rows = new Map();
  const places = new Map();
  for (const item of items) {
    const place = `${item.coder} ${item.group}`;
    if (!rows.has(item.codec)) rows.set(item.codec, {id: item.codec, items: [], at: new Map()});
    rows.get(item.codec).items.push(item);
    rows.get(item.codec).at.set(place, item);
    places.set(place, item);
  }
  const columns = [...places.keys()].sort(collator.compare).map((place, at, all) => {
    const {coder, group} = places.get(place);
    const first = !at || places.get(all[at - 1]).coder !== coder;
    return {title: visible(group), width: 9.5, group: `${coder}s`, style: first ? 'start' : null, cell: row => verdictCell(row.at.get(place)),
            key: row => row.at.has(place) ? gravity(row.at.get(place).verdict) : null};
  });
  const ids = {title: 'Codec', width: 12, cell: row => foreign(row.id), key: row => row.id};
  return dataTable('Verdict of each codec test', [ids, ...columns], [...rows.values()]);
}

function slowest(items) {
  const hung = items.filter(item => item.verdict === 'hung').length;
  const timed = items.filter(item => item.seconds > 0 && item.verdict !== 'hung')
    .sort((a, b) => b.seconds - a.seconds).slice(0, SLOWEST);
  if (!timed.length) return null;
  return section('slowest', 'Slowest items',
    make('ol', {class: 'bars'}, timed.map(item => {
      const bar = make('div');
      bar.style.width = `${100 * item.seconds / timed[0].seconds}%`;
      return make('li', null, make('span', null, foreign(item.label), item.verdict === 'good' ? null : [' ', badge(item.verdict)]),
                  make('span', {class: 'number'}, duration(item.seconds)),
                  make('div', {class: 'bar', 'aria-hidden': 'true'}, bar));
    })),
    hung ? make('p', {class: 'quiet'}, `Without ${plural(hung, 'item')} that hung.`) : null);
}

function result(items) {
  const bad = items.filter(item => item.bad).length;
  const reached = items.filter(item => item.verdict !== 'not-reached').length;
  if (bad) return `${bad} of ${plural(items.length, 'item')} ${bad === 1 ? 'is' : 'are'} bad.`;
  return `Nothing is bad among ${plural(reached, 'item')}${reached < items.length ? ' that the check reached' : ''}.`;
}

function oneReport(host, rows) {
  const items = rows.map((row, at) => host.at(at)).filter(Boolean);
  const of = kind => items.filter(item => item.kind === kind);
  const bad = badList(items);
  const codecs = of('codec');
  const plugins = [...of('plugin'), ...of('exercise')];
  const matrix = codecs.length ? codecMatrix(codecs) : null;
  const table = plugins.length ? pluginTable(of('plugin'), of('exercise')) : null;
  return {
    items, total: items.length, result: result(items), noun: 'item',
    tables: [table, matrix].filter(Boolean), showItems: bad.filter,
    sections: [bad.element, table && section('plugins', `Plugins (${of('plugin').length})`, table.element),
               matrix && section('codecs', `Codecs (${codecs.length} tests)`, matrix.element), slowest(items)],
  };
}

